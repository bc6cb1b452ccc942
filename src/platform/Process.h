// This process and others.
#pragma once

#include <string>
#include <vector>

namespace kq {

class Process {
 public:
    virtual ~Process() = default;
    // The computer's short name, as much of it as the platform reports (15 characters on Windows).
    virtual std::string ComputerName() const = 0;
    // Full path of the running program.
    virtual std::string ExecutablePath() const = 0;
    // Starts a program with a visible window and does not wait. Empty when it was started, else the
    // system's description of the error, without a full stop.
    virtual std::string Start(const std::string& path) = 0;
};

}  // namespace kq
