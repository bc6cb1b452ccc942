// A login server as a process, and the temporary folder that it lives in.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/ChildProcess.h"

namespace kq {

class TemporaryFolder {
 public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::string& Path() const { return path_; }

 private:
    std::string path_;
};

// zebd with the bus in it, on free loopback ports, with one user.
class LoginServer {
 public:
    static constexpr const char* kUser = "ann";
    static constexpr const char* kPassword = "Mark-3d-Pa5s-w0rd";

    // `options`: of zebd, besides those of its folder and ports.
    LoginServer(const std::string& zebctl, const std::string& zebd,
                const std::vector<std::string>& options = {});

    // Another user with the same password; `options` of zebctl besides.
    void AddUser(const std::string& login, const std::vector<std::string>& options) const;
    const std::string& Port() const { return port_; }
    const std::string& BusPort() const { return bus_port_; }
    const std::string& Folder() const { return folder_.Path(); }
    ChildProcess& Process() { return *process_; }

 private:
    std::string zebctl_;
    TemporaryFolder folder_;
    std::string port_;
    std::string bus_port_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace kq
