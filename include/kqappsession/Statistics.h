// Named figures of a running program: counters that grow, gauges that are set, durations that are gathered.
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
    // What was recorded under one name. Durations are milliseconds.
    struct Duration {
        std::int64_t count = 0;
        double total = 0;
        double minimum = 0;
        double maximum = 0;
        double Mean() const { return count == 0 ? 0 : total / static_cast<double>(count); }
    };

    void Increment(std::string_view name, std::int64_t by = 1);  // saturates at the ends of 64 bits
    void Set(std::string_view name, std::int64_t value);
    void Record(std::string_view name, double milliseconds);  // negative and not finite values raise error 5

    std::int64_t Value(std::string_view name) const;   // 0 for an unknown name
    Duration DurationOf(std::string_view name) const;  // empty for an unknown name
    std::vector<std::string> Names() const;            // of counters and gauges, in order
    std::vector<std::string> DurationNames() const;
    void Clear();
    // One "name value" or "name count minimum mean maximum" a line, in order of names.
    std::string Text() const;

 private:
    std::map<std::string, std::int64_t, std::less<>> values_;
    std::map<std::string, Duration, std::less<>> durations_;
};

}  // namespace kq
