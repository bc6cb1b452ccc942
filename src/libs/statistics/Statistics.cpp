// Named figures. Counters and gauges share one set of names, durations have their own.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include <kqappsession/Error.h>
#include <kqappsession/Statistics.h>

namespace kq {
namespace {

std::int64_t AddSaturating(std::int64_t a, std::int64_t b) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (b > 0 && a > Limits::max() - b) return Limits::max();
    if (b < 0 && a < Limits::min() - b) return Limits::min();
    return a + b;
}

// The entry of `name`, made when it is new.
template <class Map>
typename Map::mapped_type& Entry(Map& map, std::string_view name) {
    const auto found = map.find(name);
    return found != map.end() ? found->second : map[std::string(name)];
}

template <class Map>
std::vector<std::string> Keys(const Map& map) {
    std::vector<std::string> keys;
    keys.reserve(map.size());
    for (const auto& [name, value] : map)
        keys.push_back(name);
    return keys;
}

// Three decimals with a point, in every locale.
std::string TextOfMilliseconds(double value) {
    std::array<char, 512> buffer{};  // the largest double has 309 digits before the point
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, 3);
    return std::string(buffer.data(), end.ptr);
}

// A blank or a line break inside a name would look like the end of it.
std::string OneWord(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return c <= ' ' || c == 0x7F; }, '_');
    return name;
}

std::string Line(const std::string& name, std::int64_t value) {
    return OneWord(name) + ' ' + std::to_string(value) + '\n';
}

std::string Line(const std::string& name, const Statistics::Duration& duration) {
    return OneWord(name) + ' ' + std::to_string(duration.count) + ' ' + TextOfMilliseconds(duration.minimum) +
           ' ' + TextOfMilliseconds(duration.Mean()) + ' ' + TextOfMilliseconds(duration.maximum) + '\n';
}

}  // namespace

void Statistics::Increment(std::string_view name, std::int64_t by) {
    auto& value = Entry(values_, name);
    value = AddSaturating(value, by);
}

void Statistics::Set(std::string_view name, std::int64_t value) {
    Entry(values_, name) = value;
}

void Statistics::Record(std::string_view name, double milliseconds) {
    if (!std::isfinite(milliseconds) || milliseconds < 0) Raise(RuntimeError::InvalidProcedureCall);
    auto& duration = Entry(durations_, name);
    duration.minimum = duration.count == 0 ? milliseconds : std::min(duration.minimum, milliseconds);
    duration.maximum = std::max(duration.maximum, milliseconds);
    duration.total += milliseconds;
    duration.count = AddSaturating(duration.count, 1);
}

std::int64_t Statistics::Value(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? 0 : found->second;
}

Statistics::Duration Statistics::DurationOf(std::string_view name) const {
    const auto found = durations_.find(name);
    return found == durations_.end() ? Duration() : found->second;
}

std::vector<std::string> Statistics::Names() const {
    return Keys(values_);
}

std::vector<std::string> Statistics::DurationNames() const {
    return Keys(durations_);
}

void Statistics::Clear() {
    values_.clear();
    durations_.clear();
}

std::string Statistics::Text() const {
    std::string text;
    auto duration = durations_.begin();
    for (const auto& [name, value] : values_) {
        for (; duration != durations_.end() && duration->first < name; ++duration)
            text += Line(duration->first, duration->second);
        text += Line(name, value);
    }
    for (; duration != durations_.end(); ++duration)
        text += Line(duration->first, duration->second);
    return text;
}

}  // namespace kq
