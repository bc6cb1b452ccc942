// The key of the bus from its making to a login, and the sentences of the programs about a bad one.
#include <filesystem>

#include <gtest/gtest.h>

#include "tools/ChildProcess.h"
#include "tools/LoginServer.h"

namespace kq {
namespace {

using Arguments = std::vector<std::string>;

std::unique_ptr<ChildProcess> Make(const std::string& file) {
    return std::make_unique<ChildProcess>(Arguments{KQ_ZEBCTL, "bus-key", file});
}

std::unique_ptr<ChildProcess> AppServer(const std::string& bus_port, const std::string& key_file) {
    return std::make_unique<ChildProcess>(
        Arguments{KQ_APPSERVER, "--app", "Demo", "--bus-port", bus_port, "--bus-key-file", key_file});
}

TEST(BusKey, MadeByZebctlLetsAnApplicationServerOntoTheBus) {
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/bus.key";
    const auto made = Make(file);
    EXPECT_EQ(0, made->ExitCode()) << made->Errors();
    EXPECT_EQ("zebctl: made a key in " + file + "\n", made->Output());
    const LoginServer zeb(KQ_ZEBCTL, KQ_ZEBD, {"--bus-key-file", file});
    AppServer(zeb.BusPort(), file)->AwaitLine("kqappserver: on the bus");
    const std::string other = folder.Path() + "/other.key";
    EXPECT_EQ(0, Make(other)->ExitCode());
    const auto stranger = AppServer(zeb.BusPort(), other);
    EXPECT_EQ("kqappserver: off the bus: The hub refuses this client: Wrong key",
              stranger->AwaitLine("kqappserver: off the bus"));
}

TEST(BusKey, OfAFileThatOthersMayReadIsRefusedByEveryProgramInTheSameWords) {
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/bus.key";
    EXPECT_EQ(0, Make(file)->ExitCode());
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    const std::string sentence =
        "The key file " + file + " is accessible to other users; 'chmod 600 " + file + "' corrects that";
    const auto server = AppServer("7701", file);
    EXPECT_EQ(1, server->ExitCode());
    EXPECT_EQ("kqappserver: " + sentence + "\n", server->Errors());
    const std::string data = folder.Path() + "/zeb";
    EXPECT_EQ(0, ChildProcess({KQ_ZEBCTL, "init", "--data", data}).ExitCode());
    ChildProcess zebd({KQ_ZEBD, "--data", data, "--port", "0", "--bus-port", "0", "--bus-key-file", file});
    EXPECT_EQ(1, zebd.ExitCode());
    EXPECT_EQ("zebd: " + sentence + "\n", zebd.Errors());
}

TEST(BusKey, OfAFileThatIsThereIsNotReplaced) {
    const TemporaryFolder folder;
    const std::string file = folder.Path() + "/bus.key";
    EXPECT_EQ(0, Make(file)->ExitCode());
    const auto again = Make(file);
    EXPECT_EQ(1, again->ExitCode());
    EXPECT_EQ("zebctl: The key file " + file + " cannot be made: File exists\n", again->Errors());
}

TEST(BusKey, IsNeededForABusThatOtherMachinesReach) {
    const TemporaryFolder folder;
    const std::string data = folder.Path() + "/zeb";
    EXPECT_EQ(0, ChildProcess({KQ_ZEBCTL, "init", "--data", data}).ExitCode());
    for (const char* address : {"", "0.0.0.0", "::"}) {
        ChildProcess zebd(
            {KQ_ZEBD, "--data", data, "--port", "0", "--bus-port", "0", "--bus-address", address});
        EXPECT_EQ(1, zebd.ExitCode()) << address;
        EXPECT_NE(std::string::npos, zebd.Errors().find("A hub without a key listens on loopback only"))
            << zebd.Errors();
        EXPECT_EQ("", zebd.Output());
    }
}

}  // namespace
}  // namespace kq
