// Files and folders that only their owner may use.
//
// Whoever else can write to the folder or one of its files could swap the users' passwords. So a folder or
// file that belongs to another user or that others have access to is refused and left as it is, and a
// symbolic link is not followed.
#pragma once

#include <cstddef>
#include <string>

namespace kq::zeb {

// Each raises kq::Error with the system's number and the source "zebd".

// Makes a folder with mode 0700 whose parent exists. An existing folder must be private.
void MakePrivateFolder(const std::string& path);
// False when there is no such folder. Raises when it is not a private folder or cannot be looked at.
bool PrivateFolderExists(const std::string& path);
// Makes an empty file with mode 0600. Raises when there is one already or it cannot be made.
void CreatePrivateFile(const std::string& path);
// False when there is no such file. Raises when it is not a private file or cannot be looked at.
bool PrivateFileExists(const std::string& path);
// The first `count` bytes of a private file; fewer when it is shorter. Raises like PrivateFileExists, and
// when there is no such file.
std::string ReadPrivateFile(const std::string& path, std::size_t count);

// Keeps a second server away from a data folder: the tables that it keeps in memory are valid for one alone.
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
