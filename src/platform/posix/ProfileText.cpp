// Reading and writing share one walk over the lines, so that what is written is found again.
#include "platform/posix/ProfileText.h"

#include "base/Convert.h"

namespace kq {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string_view Unquote(std::string_view value) {
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

struct Line {
    std::size_t begin;
    std::size_t end;   // of its text
    std::size_t next;  // behind the line ending
};

Line LineAt(std::string_view text, std::size_t begin) {
    std::size_t end = text.find('\n', begin);
    const std::size_t next = end == std::string_view::npos ? text.size() : end + 1;
    if (end == std::string_view::npos) end = text.size();
    if (end > begin && text[end - 1] == '\r') --end;
    return {begin, end, next};
}

// Where section and key stand in a text.
struct Place {
    bool section_found = false;
    std::size_t section_end = 0;  // behind the last line of the section that is not blank
    std::optional<Line> line;     // the key's line
    std::string_view value;       // what follows its equals sign
};

Place Find(std::string_view text, std::string_view section, std::string_view key) {
    Place place;
    bool inside = false;
    std::size_t at = text.rfind(kByteOrderMark, 0) == 0 ? kByteOrderMark.size() : 0;
    while (at < text.size()) {
        const Line line = LineAt(text, at);
        at = line.next;
        const std::string_view content = TrimBlanks(text.substr(line.begin, line.end - line.begin));
        if (!content.empty() && content.front() == '[') {
            if (inside) break;  // the first section of the name is the one that counts
            const std::size_t close = content.rfind(']');
            if (close == std::string_view::npos) continue;
            inside = EqualsIgnoringCase(TrimBlanks(content.substr(1, close - 1)), section);
            place.section_found = inside;
            if (inside) place.section_end = line.next;
            continue;
        }
        if (!inside || content.empty()) continue;
        place.section_end = line.next;
        const std::size_t equals = content.find('=');
        if (content.front() == ';' || equals == std::string_view::npos) continue;
        if (!EqualsIgnoringCase(TrimBlanks(content.substr(0, equals)), key)) continue;
        place.line = line;
        place.value = content.substr(equals + 1);
        break;
    }
    return place;
}

// The first line's ending is the file's own.
std::string_view LineEndingOf(std::string_view text) {
    const std::size_t end = text.find('\n');
    return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

bool HoldsLineEndOrNul(std::string_view text) {
    return text.find_first_of("\r\n\0"sv) != std::string_view::npos;
}

bool CanBeWritten(std::string_view section, std::string_view key, std::string_view value) {
    if (HoldsLineEndOrNul(section) || HoldsLineEndOrNul(key) || HoldsLineEndOrNul(value)) return false;
    return !key.empty() && key.front() != ';' && key.front() != '[' &&
           key.find('=') == std::string_view::npos;
}

}  // namespace

std::optional<std::string> FindProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key) {
    const Place place = Find(text, TrimBlanks(section), TrimBlanks(key));
    if (!place.line) return std::nullopt;
    return std::string(Unquote(TrimBlanks(place.value)));
}

std::optional<std::string> WithProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key, std::string_view value) {
    section = TrimBlanks(section);
    key = TrimBlanks(key);
    if (!CanBeWritten(section, key, value)) return std::nullopt;
    const Place place = Find(text, section, key);
    const std::string_view ending = LineEndingOf(text);
    const std::string entry = std::string(key) + "=" + std::string(value);
    std::string result(text);
    if (place.line) {
        result.replace(place.line->begin, place.line->end - place.line->begin, entry);
        return result;
    }
    std::string added;
    const std::size_t at = place.section_found ? place.section_end : text.size();
    if (at > 0 && text[at - 1] != '\n' && text.substr(0, at) != kByteOrderMark) added += ending;
    if (!place.section_found) added.append("[").append(section).append("]").append(ending);
    added.append(entry).append(ending);
    result.insert(at, added);
    return result;
}

}  // namespace kq
