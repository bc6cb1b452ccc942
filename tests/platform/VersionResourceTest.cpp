// The version resource of executable files: what is found, and that no damaged file does harm.
#include <fstream>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/PeBuilder.h"
#include "platform/TemporaryFolder.h"
#include "platform/VersionResource.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

const std::string kStrings = "\\StringFileInfo\\040904B0\\";

class Versions : public testing::Test {
 protected:
    std::unique_ptr<VersionBlock> Load(const std::string& bytes) {
        return resource_->Load(folder_.Put("program.exe", bytes));
    }
    // Asks for everything there is.
    static std::size_t Exercise(const VersionBlock* block) {
        if (!block) return 0;
        return block->Translation().size() + block->Text(kStrings + "FileVersion").value_or("").size() +
               block->Text(kStrings + "CompanyName").value_or("").size();
    }

    TemporaryFolder folder_;
    std::shared_ptr<VersionResource> resource_ = MakePeVersionResource();
};

TEST_F(Versions, AreReadFromBothWidths) {
    for (const auto width : {PeBuilder::Width::Bits32, PeBuilder::Width::Bits64}) {
        const auto block = Load(PeBuilder::File(width, PeBuilder::VersionInfo()));
        ASSERT_TRUE(block);
        EXPECT_EQ(block->Translation(), (std::vector<std::uint8_t>{0x09, 0x04, 0xB0, 0x04}));
        EXPECT_EQ(block->Text(kStrings + "FileVersion"), "5.02.3");
        EXPECT_EQ(block->Text(kStrings + "ProductName"), "Client");
    }
}

TEST_F(Versions, AreFoundInAnyCase) {
    const auto block = Load(PeBuilder::File(PeBuilder::Width::Bits64, PeBuilder::VersionInfo()));
    ASSERT_TRUE(block);
    EXPECT_EQ(block->Text("\\STRINGFILEINFO\\040904b0\\fileversion"), "5.02.3");
}

TEST_F(Versions, GiveAWholeTextHoweverItsLengthIsCounted) {
    const auto block = Load(PeBuilder::File(PeBuilder::Width::Bits64, PeBuilder::VersionInfo()));
    ASSERT_TRUE(block);
    EXPECT_EQ(block->Text(kStrings + "CompanyName"), "Acme");
}

TEST_F(Versions, TellAnEmptyTextFromAMissingOne) {
    const auto block = Load(PeBuilder::File(PeBuilder::Width::Bits64, PeBuilder::VersionInfo()));
    ASSERT_TRUE(block);
    EXPECT_EQ(block->Text(kStrings + "Comments"), "");
    EXPECT_EQ(block->Text(kStrings + "SpecialBuild"), std::nullopt);
    EXPECT_EQ(block->Text("\\StringFileInfo\\04070000\\FileVersion"), std::nullopt);
    EXPECT_EQ(block->Text("\\VarFileInfo\\Translation"), std::nullopt);
}

TEST_F(Versions, AreNoneWithoutAResource) {
    EXPECT_EQ(resource_->Load(folder_.File("missing.exe")), nullptr);
    EXPECT_EQ(resource_->Load(folder_.Path()), nullptr);
    EXPECT_EQ(Load(""), nullptr);
    EXPECT_EQ(Load("#!/bin/sh\n"), nullptr);
    EXPECT_EQ(Load(PeBuilder::File(PeBuilder::Width::Bits64, PeBuilder::VersionInfo(), 24)), nullptr);
}

TEST_F(Versions, SurviveAFileCutAtAnyPlace) {
    const std::string whole = PeBuilder::File(PeBuilder::Width::Bits32, PeBuilder::VersionInfo());
    const std::string path = folder_.Put("program.exe", whole);
    for (std::size_t size = whole.size(); size-- > 0;) {
        ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(size)), 0);
        EXPECT_EQ(resource_->Load(path), nullptr) << size;
    }
}

TEST_F(Versions, SurviveAVersionTreeCutAtAnyPlace) {
    const std::string tree = PeBuilder::VersionInfo();
    for (std::size_t size = 0; size < tree.size(); ++size) {
        const auto block = Load(PeBuilder::File(PeBuilder::Width::Bits64, tree.substr(0, size)));
        EXPECT_EQ(Exercise(block.get()), 0U) << size;
    }
}

TEST_F(Versions, SurviveEveryByteDamaged) {
    const std::string whole = PeBuilder::File(PeBuilder::Width::Bits64, PeBuilder::VersionInfo());
    constexpr std::size_t kMostThereIs = 4 + 100 + 100;
    std::fstream file(folder_.Put("program.exe", whole), std::ios::in | std::ios::out | std::ios::binary);
    const auto set = [&](std::size_t at, char value) {
        file.seekp(static_cast<std::streamoff>(at)).put(value).flush();
    };
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char value : {'\x00', '\x7F', '\xFF'}) {
            set(at, value);
            EXPECT_LE(Exercise(resource_->Load(folder_.File("program.exe")).get()), kMostThereIs) << at;
        }
        set(at, whole[at]);
    }
}

}  // namespace
}  // namespace kq
