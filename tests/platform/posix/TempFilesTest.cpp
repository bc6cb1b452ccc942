// Temporary files: their names, and that nothing that is there is ever written to.
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/stat.h>

#include <gmock/gmock.h>

#include "platform/TempFiles.h"
#include "platform/TemporaryFolder.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

using ::testing::MatchesRegex;

struct TempFile : testing::Test {
    TempFile() {
        const char* const value = std::getenv("TMPDIR");
        if (value) before = value;
        ::setenv("TMPDIR", folder.Path().c_str(), 1);
    }
    ~TempFile() override {
        if (before.empty())
            ::unsetenv("TMPDIR");
        else
            ::setenv("TMPDIR", before.c_str(), 1);
    }
    static unsigned ModeOf(const std::string& path) {
        struct stat attributes {};
        return ::stat(path.c_str(), &attributes) == 0 ? attributes.st_mode & 07777U : 0U;
    }

    TemporaryFolder folder;
    std::string before;
    std::shared_ptr<TempFiles> files = MakePosixTempFiles();
    std::string path;
};

TEST_F(TempFile, IsCreatedEmptyWithPrefixDigitsAndEnding) {
    EXPECT_EQ(files->CreateUnique("HLX", path).error, 0);
    EXPECT_THAT(path, MatchesRegex(folder.Path() + "/HLX[0-9A-F][0-9A-F][0-9A-F][0-9A-F]\\.tmp"));
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    EXPECT_EQ(ModeOf(path), 0600U);
}

TEST_F(TempFile, TakesThreeCharactersOfThePrefix) {
    files->CreateUnique("HLXYZ", path);
    EXPECT_THAT(path, MatchesRegex(folder.Path() + "/HLX....\\.tmp"));
}

TEST_F(TempFile, HasANewNameEachTime) {
    std::string other;
    files->CreateUnique("HLX", path);
    files->CreateUnique("HLX", other);
    EXPECT_NE(path, other);
}

TEST_F(TempFile, StandsInTheCommonFolderWithoutAUsersOwn) {
    for (const auto folder_name : {"", "relative"}) {
        ::setenv("TMPDIR", folder_name, 1);
        EXPECT_EQ(files->CreateUnique("HLX", path).error, 0);
        EXPECT_THAT(path, MatchesRegex("/tmp/HLX....\\.tmp"));
        std::filesystem::remove(path);
    }
}

TEST_F(TempFile, TellsWhyItCannotBeCreated) {
    ::setenv("TMPDIR", folder.File("missing").c_str(), 1);
    const FileResult result = files->CreateUnique("HLX", path);
    EXPECT_EQ(result.error, ENOENT);
    EXPECT_EQ(result.description, "No such file or directory");
}

TEST_F(TempFile, HoldsAProgramOfItsOwnerOnly) {
    const std::string bytes("MZ\0\n\xFF", 5);
    EXPECT_EQ(files->WriteNewProgram(folder.File("x.exe"), bytes).error, 0);
    EXPECT_EQ(folder.Get("x.exe"), bytes);
    EXPECT_EQ(ModeOf(folder.File("x.exe")), 0700U);
}

TEST_F(TempFile, NeverReplacesAFile) {
    folder.Put("x.exe", "mine");
    EXPECT_EQ(files->WriteNewProgram(folder.File("x.exe"), "MZ").error, EEXIST);
    EXPECT_EQ(folder.Get("x.exe"), "mine");
}

TEST_F(TempFile, FollowsNoLink) {
    std::filesystem::create_symlink(folder.File("elsewhere"), folder.File("x.exe"));
    EXPECT_EQ(files->WriteNewProgram(folder.File("x.exe"), "MZ").error, EEXIST);
    EXPECT_FALSE(std::filesystem::exists(folder.File("elsewhere")));
}

// No file of this process may grow beyond so many bytes while it lives.
class FileSizeLimit {
 public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

 private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(TempFile, LeavesNothingOfAProgramThatCannotBeWrittenWhole) {
    FileResult result;
    {
        const FileSizeLimit limit(10);
        result = files->WriteNewProgram(folder.File("x.exe"), std::string(100, 'x'));
    }
    EXPECT_EQ(result.error, EFBIG);
    EXPECT_EQ(result.description, "File too large");
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(TempFile, IsRefusedWithANameThatNoFileHas) {
    EXPECT_EQ(files->WriteNewProgram(folder.File(std::string("a\0b", 3)), "MZ").error, EINVAL);
}

}  // namespace
}  // namespace kq
