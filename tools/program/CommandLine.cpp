#include "tools/program/CommandLine.h"

#include "base/Version.h"
#include "tools/program/Help.h"
#include "tools/program/Output.h"
#include "tools/program/Program.h"

namespace kq {
namespace {

// The program and the subcommands that were found before the mistake: "zebctl user add".
std::string CommandOf(const CLI::App& app) {
    std::string command = app.get_name();
    for (auto parsed = app.get_subcommands(); !parsed.empty(); parsed = parsed.front()->get_subcommands())
        command += " " + parsed.front()->get_name();
    return command;
}

const CLI::App& InnermostOf(const CLI::App& app) {
    const CLI::App* innermost = &app;
    while (!innermost->get_subcommands().empty())
        innermost = innermost->get_subcommands().front();
    return *innermost;
}

bool ReplaceEnd(std::string& text, std::string_view end, std::string_view by) {
    if (!text.ends_with(end)) return false;
    text.replace(text.size() - end.size(), end.size(), by);
    return true;
}

// An unknown argument comes first: it is often a required one that was misspelt. Only its name is shown, for
// what follows it may be a password.
std::string Description(const CLI::App& app, const CLI::ParseError& error) {
    const auto unknown = app.remaining(true);
    if (!unknown.empty()) {
        const std::string& first = unknown.front();
        return "unknown " + std::string(first.starts_with('-') ? "option " : "argument ") +
               first.substr(0, first.find('='));
    }
    std::string text = error.what();
    if (text == "A subcommand is required") return "a command is required: " + CommandNames(InnermostOf(app));
    const auto colon = text.find(": ");
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr && colon != std::string::npos) {
        const bool missing = text.ends_with(" missing");
        return text.substr(0, colon) + (missing ? " needs a value" : " is given more than once");
    }
    ReplaceEnd(text, " excludes " + text.substr(text.rfind(' ') + 1),
               " and " + text.substr(text.rfind(' ') + 1) + " exclude each other");
    return text;
}

}  // namespace

void PrepareCommandLine(CLI::App& app) {
    app.formatter(std::make_shared<Help>());
    app.set_help_flag("-h,--help", "Show this help and exit");
    app.set_version_flag("--version", app.get_name() + " " + std::string(kVersion),
                         "Show the version and exit");
}

CLI::Validator InRange(NumberRange range) {
    return CLI::Validator(
        [range](std::string& text) { return WholeNumber(text, range) ? std::string() : RangeRule(range); },
        RangeText(range));
}

CLI::Validator ShowRange(const std::string& range) {
    return CLI::Validator([](std::string&) { return std::string(); }, range);
}

std::string ExitCodeTable(const std::vector<std::pair<int, std::string>>& codes) {
    std::string text = "Exit codes:\n";
    for (const auto& [code, meaning] : codes) {
        std::string number = std::to_string(code);
        number.insert(0, 5 - number.size(), ' ');
        text += number + "  " + meaning + "\n";
    }
    return text;
}

std::optional<int> ParseCommandLine(CLI::App& app, int argc, const char* const* argv) {
    try {
        app.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::CallForVersion& version) {
        Print(std::string(version.what()) + "\n");
        return kExitDone;
    } catch (const CLI::Success&) {
        Print(app.help());
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        Complain(app.get_name(), Description(app, error) + " (see " + CommandOf(app) + " --help)");
        return kExitMisused;
    }
}

}  // namespace kq
