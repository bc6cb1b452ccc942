// The start of a program that a test runs, and how it ended.
#pragma once

#include <spawn.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kq {

// Starts the program `command`.front() with the arguments behind it. `environment`: NAME=VALUE, besides the
// test's own. Raises std::runtime_error when there is no such program.
pid_t Spawn(const std::vector<std::string>& command, const std::vector<std::string>& environment,
            const posix_spawn_file_actions_t& actions, const posix_spawnattr_t* attributes = nullptr);

// From what waitpid tells: of a program that a signal ended, 1000 plus the signal.
int ExitCodeFrom(int status);

}  // namespace kq
