// The computer's name and the share of a folder.
#include <gtest/gtest.h>

#include "messages/EnsureShare.h"
#include "platform/Machine.h"
#include "support/FakePlatform.h"

namespace kq {
namespace {

struct Share : testing::Test {
    Share() { machine.process->computer_name = "HOST"; }

    using Shared = std::vector<std::pair<std::string, std::string>>;
    std::string Ensure(const std::string& folder, const std::string& name) {
        return EnsureShare(machine.platform, folder, name);
    }
    const Shared& AskedFor() const { return machine.file_share->shared; }

    FakePlatform machine;
};

TEST_F(Share, IsAskedForWhenItsPathCannotBeListed) {
    EXPECT_EQ(Ensure("C:\\Install", "Setup"), "\\\\HOST\\Setup\\");
    EXPECT_EQ(AskedFor(), (Shared{{"Setup", "C:\\Install"}}));
}

TEST_F(Share, IsNotAskedForWhenItsPathCanBeListed) {
    machine.file_share->listable = {"\\\\HOST\\Setup\\"};
    EXPECT_EQ(Ensure("C:\\Install", "Setup"), "\\\\HOST\\Setup\\");
    EXPECT_EQ(AskedFor(), Shared{});
}

TEST_F(Share, IsNeverAskedForWithAQuotationMark) {
    EXPECT_EQ(Ensure("C:\\In\"stall", "Setup"), "\\\\HOST\\Setup\\");
    EXPECT_EQ(Ensure("C:\\Install", "Set\"up"), "\\\\HOST\\Set\"up\\");
    EXPECT_EQ(AskedFor(), Shared{});
}

struct FailingShare : FileShare {
    bool CanList(const std::string&) const override { return false; }
    void Share(const std::string&, const std::string&) override {
        throw std::runtime_error("no such program");
    }
};

TEST_F(Share, HasItsPathEvenWhenSharingFails) {
    Platform::Machine parts = machine.platform->Parts();
    parts.file_share = std::make_shared<FailingShare>();
    EXPECT_EQ(EnsureShare(MakeBundle(parts), "C:\\Install", "Setup"), "\\\\HOST\\Setup\\");
}

TEST_F(Share, IsNamedByAtMostFifteenCharactersOfTheComputer) {
    machine.process->computer_name = "FIFTEEN-LETTERS";
    EXPECT_EQ(GetLocalComputerName(machine.platform), "FIFTEEN-LETTERS");
    machine.process->computer_name = "FIFTEEN-LETTERS-AND-MORE";
    EXPECT_EQ(GetLocalComputerName(machine.platform), "FIFTEEN-LETTERS");
    EXPECT_EQ(Ensure("C:\\x", "S"), "\\\\FIFTEEN-LETTERS\\S\\");
}

}  // namespace
}  // namespace kq
