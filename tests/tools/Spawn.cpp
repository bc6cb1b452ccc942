#include "tools/Spawn.h"

#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace kq {
namespace {

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const auto& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

pid_t Spawn(const std::vector<std::string>& command, const std::vector<std::string>& environment,
            const posix_spawn_file_actions_t& actions, const posix_spawnattr_t* attributes) {
    std::vector<std::string> variables = environment;  // getenv finds the first of a name
    for (char** variable = environ; *variable != nullptr; ++variable)
        variables.emplace_back(*variable);
    pid_t pid = -1;
    if (posix_spawn(&pid, command.front().c_str(), &actions, attributes, Pointers(command).data(),
                    Pointers(variables).data()) != 0)
        throw std::runtime_error("cannot start " + command.front());
    return pid;
}

int ExitCodeFrom(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

}  // namespace kq
