// Private-profile files by the system's own calls: what the library relies on, and what is kept from them.
#include <string>

#include <gtest/gtest.h>

#include "platform/ProfileFile.h"
#include "platform/TemporaryFolder.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

class Profile : public testing::Test {
 protected:
    std::string Read(const std::string& key, const std::string& default_value = "none",
                     std::size_t size = 1024) {
        return file_->Read("Default", key, default_value, size, Path());
    }
    bool Write(const std::string& key, const std::string& value, const std::string& section = "Default") {
        return file_->Write(section, key, value, Path());
    }
    std::string Path() const { return folder_.File("a.ini"); }

    TemporaryFolder folder_;
    std::shared_ptr<ProfileFile> file_ = MakeWin32ProfileFile();
};

TEST_F(Profile, FindsSectionsAndKeysInAnyCase) {
    folder_.Put("a.ini", "[DEFAULT]\r\nAddress=host\r\n");
    EXPECT_EQ(Read("aDDRESS"), "host");
}

TEST_F(Profile, GivesTheDefaultWithoutItsTrailingBlanks) {
    EXPECT_EQ(Read("Key", " x  "), " x");
    EXPECT_EQ(file_->Read("Default", "Key", " x  ", 10, ""), " x");
}

TEST_F(Profile, DropsOuterBlanksAndOnePairOfQuotationMarks) {
    folder_.Put("a.ini", "[Default]\r\n A = \" two words \" \r\nB='x'\r\n");
    EXPECT_EQ(Read("A"), " two words ");
    EXPECT_EQ(Read("B"), "x");
}

TEST_F(Profile, CutsToTheSizeOfTheBuffer) {
    folder_.Put("a.ini", "[Default]\r\nKey=" + std::string(2000, 'x') + "\r\n");
    EXPECT_EQ(Read("Key", "", 1024).size(), 1023U);
    EXPECT_EQ(Read("Key", "", 1), "");
    EXPECT_EQ(Read("Key", "", 0), "");
}

TEST_F(Profile, ReadsWhatItWrote) {
    for (const char* value : {"host", "", "a=b", "[x]", "; no comment", "\xC3\xA4"}) {
        ASSERT_TRUE(Write("Key", value));
        EXPECT_EQ(Read("Key"), value);
    }
}

TEST_F(Profile, KeepsTextsInTheAnsiCodePage) {
    ASSERT_TRUE(Write("Key", "\xC3\xA4"));
    EXPECT_NE(folder_.Get("a.ini").find("Key=\xE4"), std::string::npos);
}

TEST_F(Profile, RefusesWhatCouldNotBeReadBack) {
    ASSERT_TRUE(Write("Key", "1"));
    const std::string before = folder_.Get("a.ini");
    EXPECT_FALSE(Write("Key", "a\nb"));
    EXPECT_FALSE(Write("Key", "a\rb"));
    EXPECT_FALSE(Write("Key", std::string("a\0b", 3)));
    EXPECT_FALSE(Write("a=b", "x"));
    EXPECT_FALSE(Write("", "x"));
    EXPECT_FALSE(Write(";a", "x"));
    EXPECT_FALSE(Write("Key", "x", "a]\n[b"));
    EXPECT_EQ(folder_.Get("a.ini"), before);
}

TEST_F(Profile, FailsWithoutAFolder) {
    EXPECT_FALSE(file_->Write("Default", "Key", "1", folder_.File("missing/a.ini")));
    EXPECT_FALSE(file_->Write("Default", "Key", "1", ""));
}

}  // namespace
}  // namespace kq
