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

LoginServer::LoginServer(const std::string& zebctl, const std::string& zebd) {
    const std::string data = Folder() + "/zeb";
    RunToItsEnd({zebctl, "init", "--data", data});
    RunToItsEnd({zebctl, "user", "add", kUser, "--first-name", "Ann", "--last-name", "Lee", "--data", data},
                std::string(kPassword) + "\n");
    process_ = std::make_unique<ChildProcess>(std::vector<std::string>{
        zebd, "--data", data, "--listen", "127.0.0.1", "--port", "0", "--bus-port", "0"});
    port_ = AfterLastColon(process_->AwaitLine("zebd: listening on "));
    bus_port_ = AfterLastColon(process_->AwaitLine("zebd: bus on "));
}

}  // namespace kq
