#include "tools/LoginServer.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace kq {
namespace {

std::string AfterLastColon(const std::string& line) {
    return line.substr(line.rfind(':') + 1);
}

void RunToItsEnd(const std::vector<std::string>& command, const std::string& input = {}) {
    ChildProcess process(command);
    process.Write(input);
    process.EndInput();
    if (process.ExitCode() != 0) {
        throw std::runtime_error(command.front() + " failed:\n" + process.Output() + process.Errors());
    }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    path_ = (std::filesystem::temp_directory_path() / "kq-XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

LoginServer::LoginServer(const std::string& zebctl, const std::string& zebd,
                         const std::vector<std::string>& options)
    : zebctl_(zebctl) {
    const std::string data = Folder() + "/zeb";
    RunToItsEnd({zebctl, "init", "--data", data});
    AddUser(kUser, {"--first-name", "Ann", "--last-name", "Lee"});
    std::vector<std::string> command{zebd,     "--data", data,         "--listen", "127.0.0.1",
                                     "--port", "0",      "--bus-port", "0"};
    command.insert(command.end(), options.begin(), options.end());
    process_ = std::make_unique<ChildProcess>(command);
    port_ = AfterLastColon(process_->AwaitLine("zebd: listening on "));
    bus_port_ = AfterLastColon(process_->AwaitLine("zebd: bus on "));
}

void LoginServer::AddUser(const std::string& login, const std::vector<std::string>& options) const {
    std::vector<std::string> command{zebctl_, "user", "add", login, "--data", Folder() + "/zeb"};
    command.insert(command.end(), options.begin(), options.end());
    RunToItsEnd(command, std::string(kPassword) + "\n");
}

}  // namespace kq
