// Files and folders of zebd that others could read or change, and those that cannot be opened at all.
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "zeb/ExpectError.h"
#include "zeb/TemporaryFolder.h"
#include "zeb/admin/Admin.h"
#include "zeb/store/PrivateFiles.h"

namespace kq::zeb {
namespace {

constexpr uid_t kNobody = 65534;

// The file system sees this thread as a user without rights. Nothing changes for who has none anyhow.
class AsNobody {
 public:
    AsNobody() { setfsuid(kNobody); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
    ~AsNobody() { setfsuid(geteuid()); }
};

class DataFolder : public testing::Test {
 protected:
    void Init() { InitData(data); }
    void ExpectOpenRefused(int number, const std::string& description) {
        ExpectError([this] { OpenData(data); }, number, "zebd", description);
    }
    void ExpectInitRefused(int number, const std::string& description) {
        ExpectError([this] { InitData(data); }, number, "zebd", description);
        EXPECT_FALSE(std::filesystem::exists(database)) << "nothing was made";
    }
    void ExpectNoDatabase() {
        ExpectError([this] { OpenData(data); }, NumberOf(RuntimeError::InvalidProcedureCall), "zebctl",
                    "There is no database in " + data + "; 'zebctl init --data " + data + "' makes one");
    }
    static void SetMode(const std::string& path, mode_t mode) { ASSERT_EQ(chmod(path.c_str(), mode), 0); }

    const TemporaryFolder folder;
    std::string data = folder.Path("data");
    std::string database = data + "/zeb.db";
};

TEST_F(DataFolder, ThatIsNotThereHasNoDatabase) {
    ExpectNoDatabase();
}

TEST_F(DataFolder, MayBeThereBeforeItsDatabase) {
    MakePrivateFolder(data);
    ExpectNoDatabase();
    Init();
    EXPECT_TRUE(OpenData(data));
}

TEST_F(DataFolder, MayBeALinkToAPrivateFolder) {
    MakePrivateFolder(folder.Path("elsewhere"));
    std::filesystem::create_symlink(folder.Path("elsewhere"), data);
    Init();
    EXPECT_TRUE(OpenData(data));
}

TEST_F(DataFolder, ThatOthersMayUseIsRefused) {
    MakePrivateFolder(data);
    for (const mode_t mode : {0777U, 0710U, 0701U}) {
        SetMode(data, mode);
        ExpectInitRefused(
            EACCES, "The folder " + data + " is open to others; only its owner may have access (chmod 700)");
    }
}

TEST_F(DataFolder, ThatOthersMayUseIsNotOpened) {
    Init();
    SetMode(data, 0750);
    ExpectOpenRefused(
        EACCES, "The folder " + data + " is open to others; only its owner may have access (chmod 700)");
}

TEST_F(DataFolder, OfAnotherUserIsRefused) {
    uid_t owner = 0;  // whoever is not root takes a folder of root's
    data = "/usr";
    if (geteuid() == 0) {
        data = folder.Path("data");
        MakePrivateFolder(data);
        ASSERT_EQ(chown(data.c_str(), kNobody, kNobody), 0);
        owner = kNobody;
    }
    ExpectInitRefused(EPERM,
                      "The folder " + data + " belongs to another user (uid " + std::to_string(owner) + ")");
}

TEST_F(DataFolder, ThatIsAFileIsRefused) {
    CreatePrivateFile(data);
    ExpectInitRefused(ENOTDIR, "The folder " + data + " cannot be opened: Not a directory");
    ExpectOpenRefused(ENOTDIR, "The folder " + data + " cannot be opened: Not a directory");
}

TEST_F(DataFolder, BelowAFileIsNotTakenForAMissingOne) {
    CreatePrivateFile(folder.Path("file"));
    data = folder.Path("file/data");
    ExpectOpenRefused(ENOTDIR, "The folder " + data + " cannot be opened: Not a directory");
}

TEST_F(DataFolder, BehindALoopOfLinksIsNotTakenForAMissingOne) {
    std::filesystem::create_symlink(data, data);
    ExpectOpenRefused(ELOOP, "The folder " + data + " cannot be opened: Too many levels of symbolic links");
}

TEST_F(DataFolder, ThatMayNotBeEnteredIsNotTakenForAnEmptyOne) {
    Init();
    SetMode(data, 0);
    SetMode(folder.Path(""), 0711);
    {
        const AsNobody nobody;
        ExpectOpenRefused(EACCES, "The file " + database + " cannot be opened: Permission denied");
    }
    SetMode(data, 0700);
    EXPECT_TRUE(OpenData(data));
}

TEST_F(DataFolder, HasNoDatabaseThatOthersMayUse) {
    Init();
    SetMode(database, 0666);
    ExpectOpenRefused(
        EACCES, "The file " + database + " is open to others; only its owner may have access (chmod 600)");
}

TEST_F(DataFolder, HasNoDatabaseBehindALink) {
    Init();
    std::filesystem::rename(database, folder.Path("elsewhere"));
    std::filesystem::create_symlink(folder.Path("elsewhere"), database);
    ExpectOpenRefused(ELOOP, "The file " + database + " is a symbolic link");
    ExpectError([this] { InitData(data); }, ELOOP, "zebd", "The file " + database + " is a symbolic link");
}

TEST_F(DataFolder, HasNoDatabaseThatIsNoFile) {
    MakePrivateFolder(data);
    ASSERT_EQ(mkfifo(database.c_str(), 0600), 0);
    ExpectOpenRefused(EINVAL, "The file " + database + " is not a regular file");
}

TEST_F(DataFolder, IsNotLockedThroughALink) {
    MakePrivateFolder(data);
    std::filesystem::create_symlink(folder.Path("elsewhere"), data + "/zebd.lock");
    ExpectError([this] { const FolderLock lock(data); }, ELOOP, "zebd",
                "The file " + data + "/zebd.lock is a symbolic link");
    EXPECT_FALSE(std::filesystem::exists(folder.Path("elsewhere")));
}

TEST_F(DataFolder, IsNotLockedWithAFileThatOthersMayLock) {
    MakePrivateFolder(data);
    CreatePrivateFile(data + "/zebd.lock");
    SetMode(data + "/zebd.lock", 0644);
    ExpectError(
        [this] { const FolderLock lock(data); }, EACCES, "zebd",
        "The file " + data + "/zebd.lock is open to others; only its owner may have access (chmod 600)");
}

TEST_F(DataFolder, IsLockedOnceAndAgainAfterwards) {
    MakePrivateFolder(data);
    {
        const FolderLock lock(data);
        ExpectError([this] { const FolderLock second(data); }, EWOULDBLOCK, "zebd",
                    "Another zebd is running with the data in " + data);
    }
    EXPECT_NO_THROW(const FolderLock again(data));
}

}  // namespace
}  // namespace kq::zeb
