// What the programs' main functions have in common.
#pragma once

#include <functional>
#include <string>

namespace kq {

// Exit codes that mean the same in every program.
inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;   // also: the output could not be written
inline constexpr int kExitMisused = 2;  // invalid command line

// Runs `body` and returns its exit code. Opens the null device for standard descriptors that are closed, so
// that no socket gets their numbers. An exception of `body` becomes one line on standard error and the exit
// code kExitFailed for an OutputError, `failed` for any other.
int RunProgram(const std::string& name, int failed, const std::function<int()>& body);

}  // namespace kq
