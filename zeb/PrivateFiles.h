// Files and folders that only their owner may read.
#pragma once

#include <string>

namespace kq::zeb {

// Makes a folder with mode 0700 whose parent exists. An existing folder is left as it is. Raises kq::Error.
void MakePrivateFolder(const std::string& path);
// Makes an empty file with mode 0600. Raises kq::Error when there is one already or it cannot be made.
void CreatePrivateFile(const std::string& path);
// Keeps a second server away from a data folder: the tables that it keeps in memory are valid for one alone.
class FolderLock {
 public:
    // Raises kq::Error when another process has the lock.
    explicit FolderLock(const std::string& folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

 private:
    int file_ = -1;
};

bool FileExists(const std::string& path);

}  // namespace kq::zeb
