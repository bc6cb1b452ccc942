// The version resource of a program made in the build.
#include <gtest/gtest.h>

#include "platform/TemporaryFolder.h"
#include "platform/VersionResource.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

const std::string kStrings = "\\StringFileInfo\\040904B0\\";

class Versions : public testing::Test {
 protected:
    std::shared_ptr<VersionResource> resource_ = MakeWin32VersionResource();
    std::unique_ptr<VersionBlock> block_ = resource_->Load(KQ_PROGRAM);
    TemporaryFolder folder_;
};

TEST_F(Versions, GiveTheTranslationTable) {
    ASSERT_TRUE(block_);
    EXPECT_EQ(block_->Translation(), (std::vector<std::uint8_t>{0x09, 0x04, 0xB0, 0x04}));
}

TEST_F(Versions, GiveWholeTexts) {
    ASSERT_TRUE(block_);
    EXPECT_EQ(block_->Text(kStrings + "FileVersion"), "5.02.3");
    EXPECT_EQ(block_->Text(kStrings + "CompanyName"), "Acme");
    EXPECT_EQ(block_->Text(kStrings + "ProductName"), "Instala\xC3\xA7\xC3\xA3o");
}

TEST_F(Versions, AreFoundInAnyCaseAndAgain) {
    ASSERT_TRUE(block_);
    EXPECT_EQ(block_->Text("\\STRINGFILEINFO\\040904b0\\fileversion"), "5.02.3");
    EXPECT_EQ(block_->Text(kStrings + "FileVersion"), "5.02.3");
}

TEST_F(Versions, HaveNoOtherTexts) {
    ASSERT_TRUE(block_);
    EXPECT_EQ(block_->Text(kStrings + "SpecialBuild"), std::nullopt);
    EXPECT_EQ(block_->Text("\\StringFileInfo\\04070000\\FileVersion"), std::nullopt);
    EXPECT_EQ(block_->Text("\\VarFileInfo\\Translation"), std::nullopt);
}

TEST_F(Versions, AreNoneWithoutAResource) {
    EXPECT_EQ(resource_->Load(folder_.File("missing.exe")), nullptr);
    EXPECT_EQ(resource_->Load(folder_.Put("text.exe", "no program")), nullptr);
    EXPECT_EQ(resource_->Load(""), nullptr);
}

}  // namespace
}  // namespace kq
