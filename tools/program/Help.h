// The text of --help.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace kq {

// Usage, description, arguments, options, commands and footer, in 80 columns.
class Help final : public CLI::FormatterBase {
 public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

// The subcommands of a command: "init, user".
std::string CommandNames(const CLI::App& app);

}  // namespace kq
