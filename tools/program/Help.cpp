#include "tools/program/Help.h"

#include <sstream>
#include <vector>

namespace kq {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 29;  // where the descriptions begin

// Breaks a line between words; what follows the first break is indented. The line's own indentation stays.
std::string Wrapped(const std::string& line, std::size_t indent) {
    std::string text = line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
    std::size_t column = text.size();
    bool first = true;
    std::istringstream words(line);
    for (std::string word; words >> word; first = false) {
        if (!first && column + 1 + word.size() > kWidth) {
            text += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!first) {
            text += ' ';
            ++column;
        }
        text += word;
        column += word.size();
    }
    return text + "\n";
}

// Each line is wrapped separately. An indented line is a row of a table; its second column begins after two
// spaces.
std::string WrappedLines(const std::string& lines) {
    std::string text;
    std::istringstream input(lines);
    for (std::string line; std::getline(input, line);) {
        const auto start = line.find_first_not_of(' ');
        const auto gap = start == std::string::npos || start == 0 ? start : line.find("  ", start);
        if (start == 0 || gap == std::string::npos) {
            text += Wrapped(line, start == std::string::npos ? 0 : start);
            continue;
        }
        const auto column = line.find_first_not_of(' ', gap);
        const std::string second = Wrapped(std::string(column, ' ') + line.substr(column), column);
        text += line.substr(0, column) + second.substr(column);
    }
    return text;
}

std::string Row(const std::string& name, const std::string& description) {
    std::string row = "  " + name;
    if (row.size() + 2 > kColumn) {
        row += "\n" + std::string(kColumn, ' ');
    } else {
        row.resize(kColumn, ' ');
    }
    return row + Wrapped(std::string(kColumn, ' ') + description, kColumn).substr(kColumn);
}

// CLI11 returns the type and the descriptions of the checks as one text: "TEXT:1 to 65535".
struct Value {
    std::string type;
    std::string range;
};

Value ValueOf(const CLI::Option& option) {
    const std::string name = option.get_type_name();
    const auto colon = name.find(':');
    return {name.substr(0, colon), colon == std::string::npos ? "" : name.substr(colon + 1)};
}

std::string NameOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true, false);
    std::string name = option.get_name(false, true);
    for (auto comma = name.find(','); comma != std::string::npos; comma = name.find(',', comma + 2))
        name.insert(comma + 1, " ");
    const Value value = ValueOf(option);
    const bool number = value.type == "INT";
    if (option.get_type_size() != 0) name += " " + (number ? "NUMBER" : value.type);
    return name;
}

std::string DescriptionOf(const CLI::Option& option) {
    std::string notes;
    const auto add = [&notes](const std::string& note) { notes += (notes.empty() ? "" : "; ") + note; };
    if (option.get_required()) add("required");
    if (!option.get_envname().empty()) add("or in the environment as " + option.get_envname());
    if (const auto range = ValueOf(option).range; !range.empty()) add(range);
    if (const auto text = option.get_default_str(); !text.empty()) add("default: " + text);
    std::string text = option.get_description();
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text + (notes.empty() ? "" : " (" + notes + ")");
}

std::string Options(const CLI::App& app, const std::string& title, bool positional) {
    std::string rows;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional() == positional) rows += Row(NameOf(*option), DescriptionOf(*option));
    }
    return rows.empty() ? rows : "\n" + title + ":\n" + rows;
}

std::string Usage(const CLI::App& app, const std::string& name) {
    std::string line = "Usage: " + name;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_required()) line += " " + NameOf(*option);
    }
    line += app.get_subcommands({}).empty() ? " [OPTIONS]" : " COMMAND [OPTIONS]";
    return line + "\n";
}

// One row for each command that has no further ones below it.
std::string Commands(const CLI::App& app, const std::string& path) {
    std::string rows;
    for (const CLI::App* command : app.get_subcommands({})) {
        std::string name = path + command->get_name();
        const std::string below = Commands(*command, name + " ");
        for (const CLI::Option* option : command->get_options()) {
            if (option->get_positional()) name += " " + NameOf(*option);
        }
        rows += below.empty() ? Row(name, command->get_description()) : below;
    }
    return rows;
}

}  // namespace

std::string Help::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode /*mode*/) const {
    std::string text = Usage(*app, name) + "\n" + WrappedLines(app->get_description());
    const std::string commands = Commands(*app, "");
    if (!commands.empty()) text += "\nCommands:\n" + commands;
    text += Options(*app, "Arguments", true) + Options(*app, "Options", false);
    // A command inherits the program's footer.
    const bool whole = app->get_parent() == nullptr;
    if (const auto footer = app->get_footer(); whole && !footer.empty()) text += "\n" + WrappedLines(footer);
    return text;
}

std::string CommandNames(const CLI::App& app) {
    std::string names;
    for (const CLI::App* command : app.get_subcommands({}))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

}  // namespace kq
