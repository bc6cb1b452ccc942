// Private-profile files: what is found, what is written where, and what a write leaves alone.
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ProfileFile.h"
#include "platform/TemporaryFolder.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

class Profile : public testing::Test {
 protected:
    std::string Read(const std::string& key, const std::string& default_value = "none",
                     std::size_t size = 1024, const std::string& section = "Default") {
        return file_->Read(section, key, default_value, size, folder_.File("a.ini"));
    }
    bool Write(const std::string& key, const std::string& value, const std::string& section = "Default") {
        return file_->Write(section, key, value, folder_.File("a.ini"));
    }
    void Put(std::string_view text) { folder_.Put("a.ini", text); }
    std::string Text() { return folder_.Get("a.ini"); }

    TemporaryFolder folder_;
    std::shared_ptr<ProfileFile> file_ = MakePosixProfileFile();
};

TEST_F(Profile, FindsSectionsAndKeysInAnyCase) {
    Put("[DEFAULT]\nAddress=host\n");
    EXPECT_EQ(Read("aDDRESS"), "host");
}

TEST_F(Profile, GivesTheDefaultWithoutItsTrailingBlanks) {
    EXPECT_EQ(Read("Key", " x  "), " x");
    Put("[Other]\nKey=1\n[Default]\n");
    EXPECT_EQ(Read("Key", "x"), "x");
}

TEST_F(Profile, GivesAnEmptyValueAsEmpty) {
    Put("[Default]\nKey=\nBlank=   \n");
    EXPECT_EQ(Read("Key", "x"), "");
    EXPECT_EQ(Read("Blank", "x"), "");
}

TEST_F(Profile, DropsOuterBlanksAndOnePairOfQuotationMarks) {
    Put("[Default]\n A = \" two words \" \nB='x'\nC=\"\"x\"\"\nD=\"x'\nE=\"\nF = a \t\n");
    EXPECT_EQ(Read("A"), " two words ");
    EXPECT_EQ(Read("B"), "x");
    EXPECT_EQ(Read("C"), "\"x\"");
    EXPECT_EQ(Read("D"), "\"x'");
    EXPECT_EQ(Read("E"), "\"");
    EXPECT_EQ(Read("F"), "a");
}

TEST_F(Profile, CutsToTheSizeOfTheBufferInCharacters) {
    Put("[Default]\nKey=" + std::string(2000, 'x') + "\nUml=\xC3\xA4\xC3\xB6\xC3\xBC\n");
    EXPECT_EQ(Read("Key", "", 1024).size(), 1023U);
    EXPECT_EQ(Read("Uml", "", 3), "\xC3\xA4\xC3\xB6");
    EXPECT_EQ(Read("Key", "", 1), "");
    EXPECT_EQ(Read("Key", "", 0), "");
}

TEST_F(Profile, TakesNoCommentForAKey) {
    Put("[Default]\n;Key=comment\nKey=value\n");
    EXPECT_EQ(Read("Key"), "value");
    EXPECT_EQ(Read(";Key"), "none");
}

TEST_F(Profile, CountsTheFirstSectionAndTheFirstKeyOfAName) {
    Put("[Default]\nKey=1\nKey=2\n[Other]\n[default]\nKey=3\nLate=4\n");
    EXPECT_EQ(Read("Key"), "1");
    EXPECT_EQ(Read("Late"), "none");
}

TEST_F(Profile, KeepsEqualsSignsOfAValue) {
    Put("[Default]\nKey=a=b\n");
    EXPECT_EQ(Read("Key"), "a=b");
}

TEST_F(Profile, ReadsBehindAByteOrderMark) {
    Put("\xEF\xBB\xBF[Default]\r\nKey=1\r\n");
    EXPECT_EQ(Read("Key"), "1");
}

TEST_F(Profile, ReadsWhatItWrote) {
    for (const char* value : {"host", "", "a=b", "[x]", "; no comment", "\xC3\xA4"}) {
        ASSERT_TRUE(Write("Key", value));
        EXPECT_EQ(Read("Key"), value);
    }
}

TEST_F(Profile, MakesANewFileForItsOwnerAlone) {
    ASSERT_TRUE(Write("Key", "value"));
    EXPECT_EQ(Text(), "[Default]\nKey=value\n");
    struct stat attributes {};
    ASSERT_EQ(::stat(folder_.File("a.ini").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode & 0777U, 0600U);
}

TEST_F(Profile, ReplacesTheKeysLineAndNothingElse) {
    Put("; head\n[Default]\nA=1\nkey = old ; no comment\n\nB=2\n[Other]\nKey=3\n");
    ASSERT_TRUE(Write("Key", "new"));
    EXPECT_EQ(Text(), "; head\n[Default]\nA=1\nKey=new\n\nB=2\n[Other]\nKey=3\n");
}

TEST_F(Profile, AddsAKeyAtTheEndOfItsSection) {
    Put("[Default]\nA=1\n; note\n\n[Other]\nB=2");
    ASSERT_TRUE(Write("C", "3"));
    EXPECT_EQ(Text(), "[Default]\nA=1\n; note\nC=3\n\n[Other]\nB=2");
    ASSERT_TRUE(Write("D", "4", "other"));
    EXPECT_EQ(Text(), "[Default]\nA=1\n; note\nC=3\n\n[Other]\nB=2\nD=4\n");
}

TEST_F(Profile, AddsASectionAtTheEndInTheFilesOwnLineEnding) {
    Put("[Other]\r\nA=1");
    ASSERT_TRUE(Write("B", "2"));
    EXPECT_EQ(Text(), "[Other]\r\nA=1\r\n[Default]\r\nB=2\r\n");
    ASSERT_TRUE(Write("B", "3"));
    EXPECT_EQ(Text(), "[Other]\r\nA=1\r\n[Default]\r\nB=3\r\n");
}

TEST_F(Profile, RefusesWhatCouldNotBeReadBack) {
    Put("[Default]\nKey=1\n");
    EXPECT_FALSE(Write("Key", "a\nb"));
    EXPECT_FALSE(Write("Key", "a\rb"));
    EXPECT_FALSE(Write("Key", std::string("a\0b", 3)));
    EXPECT_FALSE(Write("a=b", "x"));
    EXPECT_FALSE(Write("", "x"));
    EXPECT_FALSE(Write(";a", "x"));
    EXPECT_FALSE(Write("Key", "x", "a]\n[b"));
    EXPECT_EQ(Text(), "[Default]\nKey=1\n");
}

TEST_F(Profile, KeepsTheModeOfAFileAndALinkToIt) {
    Put("[Default]\nKey=1\n");
    ::chmod(folder_.File("a.ini").c_str(), 0640);
    ASSERT_EQ(::symlink("a.ini", folder_.File("link.ini").c_str()), 0);
    ASSERT_TRUE(file_->Write("Default", "Key", "2", folder_.File("link.ini")));
    struct stat attributes {};
    ASSERT_EQ(::lstat(folder_.File("link.ini").c_str(), &attributes), 0);
    EXPECT_TRUE(S_ISLNK(attributes.st_mode));
    ASSERT_EQ(::stat(folder_.File("a.ini").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode & 0777U, 0640U);
    EXPECT_EQ(Read("Key"), "2");
}

TEST_F(Profile, FailsWithoutAFolderAndOnWhatIsNoFile) {
    EXPECT_FALSE(file_->Write("Default", "Key", "1", folder_.File("missing/a.ini")));
    EXPECT_FALSE(file_->Write("Default", "Key", "1", folder_.Path()));
    EXPECT_FALSE(file_->Write("Default", "Key", "1", ""));
    ASSERT_EQ(::mkfifo(folder_.File("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(file_->Write("Default", "Key", "1", folder_.File("pipe")));
    EXPECT_EQ(file_->Read("Default", "Key", "x", 10, folder_.File("pipe")), "x");
}

TEST_F(Profile, LeavesNoOtherFileBehind) {
    ASSERT_TRUE(Write("Key", "1"));
    ASSERT_TRUE(Write("Key", "2"));
    const std::filesystem::directory_iterator files(folder_.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(Profile, LosesNoUpdateOfConcurrentWriters) {
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([this, writer] {
            const auto own = MakePosixProfileFile();
            for (int n = 0; n < 10; ++n) {
                const std::string key = std::to_string(writer) + "-" + std::to_string(n);
                EXPECT_TRUE(own->Write("Default", key, "kept", folder_.File("a.ini")));
            }
        });
    }
    for (auto& writer : writers)
        writer.join();
    int kept = 0;
    for (int i = 0; i < 40; ++i)
        kept += Read(std::to_string(i / 10) + "-" + std::to_string(i % 10)) == "kept";
    EXPECT_EQ(kept, 40);
}

}  // namespace
}  // namespace kq
