// Text in JSON. A quoted text is valid JSON whatever bytes it contains, and is on one line as OneLine makes
// it. So it is also used to show texts of others on a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kq {

// The text in quotation marks. Ill-formed UTF-8 becomes U+FFFD.
std::string JsonString(std::string_view text);

// An object that is written member by member; the caller gives each name once.
class JsonObject {
 public:
    JsonObject& Add(std::string_view name, std::string_view value);
    JsonObject& Add(std::string_view name, std::int64_t value);
    JsonObject& Add(std::string_view name, const std::vector<std::string>& values);
    JsonObject& Add(std::string_view name, const JsonObject& value);
    // {"a":1,"b":"x"}
    std::string Text() const { return "{" + members_ + "}"; }

 private:
    JsonObject& AddValue(std::string_view name, std::string_view json);
    std::string members_;
};

}  // namespace kq
