// The command lines of all programs: the same look of --help and --version, the same way to report mistakes.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/program/WholeNumber.h"

namespace kq {

inline constexpr NumberRange kPort{1, 65'535};
inline constexpr NumberRange kPortOrFree{0, 65'535};  // 0: a free one

// Gives the program --version and a --help of at most 80 columns, which shows for each option whether it is
// required, its range and its default. Call it before adding options and subcommands.
void PrepareCommandLine(CLI::App& app);

// Options whose value is a whole number in the range.
CLI::Validator InRange(NumberRange range);
// Checks nothing; --help shows the range.
CLI::Validator ShowRange(const std::string& range);

// The end of --help: the meaning of the exit codes.
std::string ExitCodeTable(const std::vector<std::pair<int, std::string>>& codes);

// Nothing when the program goes on, else its exit code: kExitDone when help or the version was printed
// (raises OutputError when it could not be), kExitMisused after a mistake, which one line on standard error
// describes. Exceptions that are not about the command line pass.
std::optional<int> ParseCommandLine(CLI::App& app, int argc, const char* const* argv);

}  // namespace kq
