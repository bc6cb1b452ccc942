// The frame of a program's main function.
#pragma once

#include <functional>
#include <string>

namespace kq {

// Exit codes that mean the same in every program.
inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;   // also: the output could not be written
inline constexpr int kExitMisused = 2;  // invalid command line

// Runs `body` and returns its exit code. First the standard descriptors that are closed become the null
// device, so that no socket takes their numbers. What `body` raises becomes one line on standard error and
// the exit code kExitFailed for an OutputError, `failed` for anything else.
int RunProgram(const std::string& name, int failed, const std::function<int()>& body);

}  // namespace kq
