// Files and folders that only their owner can access.
//
// Anybody else who can write to the folder or one of its files could replace the users' passwords. So a
// folder or file that belongs to another user, or that others have access to, is refused and left unchanged,
// and a symbolic link is not followed.
#pragma once

#include <cstddef>
#include <string>

namespace kq::zeb {

// Each raises kq::Error with the system's number and the source "zebd".

// Creates a folder with mode 0700; its parent must exist. An existing folder must be private.
void MakePrivateFolder(const std::string& path);
// False when there is no such folder. Raises when it is not a private folder or cannot be examined.
bool PrivateFolderExists(const std::string& path);
// Creates an empty file with mode 0600. Raises when it exists already or cannot be created.
void CreatePrivateFile(const std::string& path);
// False when there is no such file. Raises when it is not a private file or cannot be examined.
bool PrivateFileExists(const std::string& path);
// The first `count` bytes of a private file; fewer when it is shorter. Raises like PrivateFileExists, and
// when there is no such file.
std::string ReadPrivateFile(const std::string& path, std::size_t count);

// Keeps a second server from using a data folder: the tables in memory are valid for one server only.
class FolderLock {
 public:
    // Raises when another process has the lock.
    explicit FolderLock(const std::string& folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

 private:
    int file_ = -1;
};

}  // namespace kq::zeb
