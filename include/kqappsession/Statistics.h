// Named figures of a running program: counters, gauges and durations. A name is any text. Counters and gauges
// share one set of names; durations have their own. An object belongs to one thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Export.h>

namespace kq {

class KQ_EXPORT Statistics {
 public:
    // The durations that were recorded under one name, in milliseconds.
    struct Duration {
        std::int64_t count = 0;
        double total = 0;
        double minimum = 0;
        double maximum = 0;
        double Mean() const { return count == 0 ? 0 : total / static_cast<double>(count); }
    };

    // Creates the counter or gauge if it is new. A counter stops at the ends of 64 bits.
    void Increment(std::string_view name, std::int64_t by = 1);
    void Set(std::string_view name, std::int64_t value);
    // Raises RuntimeError::InvalidProcedureCall for a value that is negative or not finite.
    void Record(std::string_view name, double milliseconds);

    std::int64_t Value(std::string_view name) const;   // 0 for an unknown name
    Duration DurationOf(std::string_view name) const;  // empty for an unknown name
    std::vector<std::string> Names() const;            // of counters and gauges, sorted
    std::vector<std::string> DurationNames() const;    // sorted
    void Clear();
    // One line for each figure, sorted by name: "name value", or "name count minimum mean maximum" with three
    // decimals. White space and control characters in a name are written as "_".
    std::string Text() const;

 private:
    std::map<std::string, std::int64_t, std::less<>> values_;
    std::map<std::string, Duration, std::less<>> durations_;
};

}  // namespace kq
