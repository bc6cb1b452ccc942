// JSON asks for fewer characters to be escaped than a line does; it allows more.
#include "tools/JsonText.h"

#include "tools/program/OneLine.h"

namespace kq {

std::string JsonString(std::string_view text) {
    std::string marked = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') marked += '\\';
        marked += c;
    }
    return OneLine(marked) + '"';
}

JsonObject& JsonObject::Add(std::string_view name, std::string_view value) {
    return AddValue(name, JsonString(value));
}

JsonObject& JsonObject::Add(std::string_view name, std::int64_t value) {
    return AddValue(name, std::to_string(value));
}

JsonObject& JsonObject::Add(std::string_view name, const std::vector<std::string>& values) {
    std::string list;
    for (const auto& value : values)
        list += (list.empty() ? "" : ",") + JsonString(value);
    return AddValue(name, "[" + list + "]");
}

JsonObject& JsonObject::Add(std::string_view name, const JsonObject& value) {
    return AddValue(name, value.Text());
}

JsonObject& JsonObject::AddValue(std::string_view name, std::string_view json) {
    if (!members_.empty()) members_ += ',';
    members_ += JsonString(name);
    members_ += ':';
    members_ += json;
    return *this;
}

}  // namespace kq
