// The key file of the bus: which files are read, and what is said about the others.
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "platform/TemporaryFolder.h"
#include "tools/program/KeyFile.h"

namespace kq {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kKey = "abcdefghijklmnopqrstuvwxyz012345";  // 32 characters

class KeyFile : public testing::Test {
 protected:
    std::string Write(const std::string& text, mode_t mode = 0600) {
        std::filesystem::remove(path);
        std::ofstream(path, std::ios::binary) << text;
        chmod(path.c_str(), mode);
        return path;
    }
    static std::string KeyIn(const std::string& file) { return ReadKeyFile(file).Reveal(); }
    static std::string WhyNot(const std::string& file) {
        try {
            ReadKeyFile(file);
        } catch (const Error& error) {
            return error.Description();
        }
        return "it was read";
    }

    TemporaryFolder folder;
    const std::string path = folder.Path() + "/bus.key";
};

TEST_F(KeyFile, GivesItsTextWithoutWhiteSpaceAtTheEnd) {
    for (const char* end : {"", "\n", "\r\n", " \t \n\n"})
        EXPECT_EQ(KeyIn(Write(kKey + end)), kKey);
    EXPECT_EQ(KeyIn(Write(" " + kKey)), " " + kKey);
}

TEST_F(KeyFile, IsReadWithEveryModeThatIsItsOwnersAlone) {
    for (const mode_t mode : {0600, 0400, 0700})
        EXPECT_EQ(KeyIn(Write(kKey, mode)), kKey) << mode;
}

TEST_F(KeyFile, IsReadBehindALink) {
    Write(kKey);
    const std::string link = folder.Path() + "/link";
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    EXPECT_EQ(KeyIn(link), kKey);
}

TEST_F(KeyFile, MustBeThere) {
    EXPECT_EQ(WhyNot(path), "The key file " + path +
                                " cannot be read: No such file or directory; 'zebctl bus-key' makes one");
}

TEST_F(KeyFile, IsClosedToOthers) {
    for (const mode_t mode : {0640, 0620, 0610, 0604, 0602, 0601, 0644, 0666}) {
        EXPECT_EQ(
            WhyNot(Write(kKey, mode)),
            "The key file " + path + " is accessible to other users; 'chmod 600 " + path + "' corrects that");
    }
}

TEST_F(KeyFile, BelongsToTheUserOfTheProgram) {
    Write(kKey);
    if (chown(path.c_str(), 12'345, 12'345) != 0) GTEST_SKIP() << "only root can give a file away";
    EXPECT_THAT(WhyNot(path),
                AllOf(StartsWith("The key file " + path + " belongs to another user"), EndsWith("(chown)")));
}

TEST_F(KeyFile, IsARegularFile) {
    EXPECT_THAT(WhyNot(folder.Path()), HasSubstr(" is not a regular file"));
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_THAT(WhyNot(path), HasSubstr(" is not a regular file"));
    EXPECT_THAT(WhyNot("/dev/null"), HasSubstr(" is not a regular file"));
}

TEST_F(KeyFile, HoldsAKeyOfThirtyTwoCharacters) {
    for (const char* empty : {"", "\n", " \t\n"})
        EXPECT_EQ(WhyNot(Write(empty)),
                  "The key file " + path + " is empty; 'zebctl bus-key' makes one with a key");
    EXPECT_EQ(WhyNot(Write(kKey.substr(1) + "  \n")),
              "The key file " + path +
                  " has a key of 31 characters; a key has 32 or more ('zebctl bus-key' makes one)");
    const std::string umlauts = "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6";  // 8
    EXPECT_THAT(WhyNot(Write(umlauts + umlauts + umlauts)), HasSubstr(" a key of 24 characters"));
    EXPECT_EQ(KeyIn(Write(umlauts + umlauts + umlauts + umlauts)).size(), 64U);
}

TEST_F(KeyFile, HoldsNothingElse) {
    EXPECT_THAT(WhyNot(Write(kKey + "\n" + kKey)), HasSubstr(" has more than one line"));
    EXPECT_THAT(WhyNot(Write(kKey + "\t" + kKey)), HasSubstr(" is not a text file"));
    EXPECT_THAT(WhyNot(Write(kKey + std::string(1, '\0') + kKey)), HasSubstr(" is not a text file"));
    EXPECT_THAT(WhyNot(Write(kKey + "\xFF")), HasSubstr(" is not a text file"));
}

TEST_F(KeyFile, IsSmall) {
    EXPECT_EQ(KeyIn(Write(std::string(4'096, 'x'))).size(), 4'096U);
    EXPECT_THAT(WhyNot(Write(std::string(4'097, 'x'))), HasSubstr(" is over 4096 bytes"));
}

TEST_F(KeyFile, IsMadeWithANewKeyForItsOwnerAlone) {
    const auto old_mask = umask(0);
    MakeKeyFile(path);
    umask(old_mask);
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    EXPECT_EQ(KeyIn(path).size(), 64U);
    const std::string other = folder.Path() + "/other";
    MakeKeyFile(other);
    EXPECT_NE(KeyIn(other), KeyIn(path));
}

TEST_F(KeyFile, IsNeverOverwritten) {
    Write(kKey);
    EXPECT_THROW(MakeKeyFile(path), Error);
    EXPECT_EQ(KeyIn(path), kKey);
    EXPECT_THROW(MakeKeyFile(folder.Path() + "/none/key"), Error);
}

}  // namespace
}  // namespace kq
