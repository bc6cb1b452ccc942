// zebd from outside: where it says that it listens, and what its log shows of texts that others made up.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/Loopback.h"
#include "tools/Site.h"

namespace kq {
namespace {

class Zebd : public testing::Test {
 protected:
    Zebd() {
        ChildProcess init({KQ_ZEBCTL, "init", "--data", data_});
        EXPECT_EQ(0, init.ExitCode()) << init.Errors();
    }
    std::unique_ptr<ChildProcess> Start(const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{KQ_ZEBD, "--data", data_, "--port", "0", "--bus-port", "0"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<ChildProcess>(command);
    }
    // "ADDRESS:" without the port.
    static std::string AddressIn(const std::string& line, const std::string& beginning) {
        return line.substr(beginning.size(), line.rfind(':') + 1 - beginning.size());
    }
    static std::string PortIn(const std::string& line) { return line.substr(line.rfind(':') + 1); }
    static std::string ClientsAt(ChildProcess& zebd) {
        return AddressIn(zebd.AwaitLine("zebd: listening on "), "zebd: listening on ");
    }
    static std::string BusAt(ChildProcess& zebd) {
        return AddressIn(zebd.AwaitLine("zebd: bus on "), "zebd: bus on ");
    }

    TemporaryFolder folder_;
    std::string data_ = folder_.Path() + "/zeb";
};

TEST_F(Zebd, SaysTheAddressOfABusOnLoopback) {
    const auto zebd = Start({"--bus-address", "localhost"});
    EXPECT_EQ("127.0.0.1:", ClientsAt(*zebd));
    EXPECT_EQ("127.0.0.1:", BusAt(*zebd));
}

TEST_F(Zebd, PutsAddressesOfIPv6IntoBrackets) {
    const auto zebd = Start({"--listen", "::1", "--bus-address", "::1"});
    if (HasIPv6()) {
        EXPECT_EQ("[::1]:", ClientsAt(*zebd));
        EXPECT_EQ("[::1]:", BusAt(*zebd));
    } else {
        EXPECT_EQ(1, zebd->ExitCode());
        EXPECT_EQ("zebd: [::1]:0: ", zebd->Errors().substr(0, 15));
    }
}

TEST_F(Zebd, SaysThatItListensOnAllAddresses) {
    EXPECT_EQ(HasIPv6() ? "[::]:" : "0.0.0.0:", ClientsAt(*Start({"--listen", ""})));
}

TEST_F(Zebd, LogsTextsOfStrangersOnOneLineAndShort) {
    const auto zebd = Start({});
    const std::string line = zebd->AwaitLine("zebd: listening on ");
    const auto login =
        RunLogin(folder_.Path(), {"--address", "127.0.0.1", "--port", PortIn(line), "--app",
                                  "\u202E\u009b" + std::string(62, 'x') + "é", "--user", "ann"});
    EXPECT_EQ(7, login->ExitCode()) << login->Errors();
    zebd->Signal(SIGTERM);
    EXPECT_EQ(0, zebd->ExitCode());
    EXPECT_NE(std::string::npos, zebd->Errors().find("Validation of \\u202e\\u009b" + std::string(62, 'x') +
                                                     "… 1.0 for 127.0.0.1:"))
        << zebd->Errors();
}

TEST_F(Zebd, EndsInOrderWithItsTerminal) {
    const auto zebd = Start({});
    BusAt(*zebd);
    zebd->Signal(SIGHUP);
    EXPECT_EQ(0, zebd->ExitCode());
    EXPECT_NE(std::string::npos, zebd->Errors().find("Stopping"));
}

}  // namespace
}  // namespace kq
