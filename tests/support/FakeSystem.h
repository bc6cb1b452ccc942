// The machine around the library, in memory: names, folders, settings files, texts, programs, shares,
// versions. Everything public is there for the test to set and to look at.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/EventLoop.h>

#include "platform/Crypto.h"
#include "platform/FileShare.h"
#include "platform/Folders.h"
#include "platform/Locale.h"
#include "platform/Process.h"
#include "platform/ProfileFile.h"
#include "platform/Resolver.h"
#include "platform/Shortcuts.h"
#include "platform/StringTable.h"
#include "platform/TempFiles.h"
#include "platform/VersionResource.h"

namespace kq {

// Knows the names that the test gives it. Dotted addresses come back as they are, "" is "localhost".
class FakeResolver final : public Resolver {
 public:
    explicit FakeResolver(std::shared_ptr<EventLoop> loop) : loop_(std::move(loop)) {}

    std::map<std::string, std::vector<std::string>> names = {{"localhost", {"127.0.0.1"}}};
    Milliseconds delay{0};           // until Resolve answers
    std::vector<std::string> asked;  // by either call

    std::string FirstIPv4(const std::string& host) override;
    void Resolve(const std::string& host, const Owner& owner,
                 std::function<void(std::vector<std::string>)> done) override;

 private:
    std::vector<std::string> Find(const std::string& host);

    std::shared_ptr<EventLoop> loop_;
};

// A folder can be created when its parent is there: a root ("" or a drive), a special folder or one made
// before.
class FakeFolders final : public Folders {
 public:
    std::map<int, std::string> special = {{5, "/home/user/Documents"}};
    char separator = '/';
    std::set<std::string> folders;
    std::set<std::string> files;
    std::map<std::string, std::string> appended;  // what was added to files, by path
    bool read_only = false;                       // nothing can be added to a file
    std::vector<std::string> create_calls;

    std::optional<std::string> SpecialFolder(int csidl) const override;
    char Separator() const override { return separator; }
    bool CreateFolder(const std::string& path) override;
    bool FileExists(const std::string& path) const override {
        return files.count(path) + folders.count(path) != 0;
    }
    bool DeleteFile(const std::string& path) override { return files.erase(path) != 0; }
    bool AppendToFile(const std::string& path, std::string_view text) override {
        if (!read_only) appended[path] += text;
        return !read_only;
    }
};

class FakeProfileFile final : public ProfileFile {
 public:
    // Values as they were written, by path, upper-case section and upper-case key.
    std::map<std::string, std::map<std::string, std::map<std::string, std::string>>> files;
    bool read_only = false;
    int write_count = 0;  // successful ones

    std::string Read(const std::string& section, const std::string& key, const std::string& default_value,
                     std::size_t size, const std::string& path) const override;
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override;
};

class FakeLocale final : public Locale {
 public:
    std::int32_t id = 1033;

    std::int32_t UserLocaleId() const override { return id; }
};

class FakeStrings final : public StringTable {
 public:
    std::map<std::int32_t, std::string> texts;

    Tongue Language() const override { return Tongue::English; }
    std::optional<std::string> Load(std::int32_t text_id) const override;
};

class FakeProcess final : public Process {
 public:
    std::string computer_name = "TESTHOST";
    std::string executable_path = "/opt/test/program";
    std::string start_failure;  // why nothing can be started; empty: everything can
    std::vector<std::string> started;

    std::string ComputerName() const override { return computer_name; }
    std::string ExecutablePath() const override { return executable_path; }
    std::string Start(const std::string& path) override;
};

class FakeFileShare final : public FileShare {
 public:
    std::set<std::string> listable;                           // UNC paths
    std::vector<std::pair<std::string, std::string>> shared;  // name, folder

    bool CanList(const std::string& unc_path) const override { return listable.count(unc_path) != 0; }
    void Share(const std::string& name, const std::string& folder) override {
        shared.emplace_back(name, folder);
    }
};

class FakeVersionResource final : public VersionResource {
 public:
    struct Block {
        std::vector<std::uint8_t> translation;
        std::map<std::string, std::string> texts;  // by sub-block path, in any case
    };
    std::map<std::string, Block> blocks;  // by file path

    std::unique_ptr<VersionBlock> Load(const std::string& path) const override;
};

class FakeShortcuts final : public Shortcuts {
 public:
    std::optional<std::string> desktop = "/home/user/Desktop";
    std::string extension = "lnk";
    bool can_create = true;
    std::map<std::string, Shortcut> made;  // by path

    std::optional<std::string> DesktopFolder() const override { return desktop; }
    std::string Extension() const override { return extension; }
    bool Create(const std::string& path, const Shortcut& shortcut) override;
};

// Names are HLX0001.tmp, HLX0002.tmp and so on.
class FakeTempFiles final : public TempFiles {
 public:
    std::string folder = "/tmp/";
    std::map<std::string, std::string> files;  // contents by path
    FileResult next_failure;                   // of the next call of either kind, once

    FileResult CreateUnique(std::string_view prefix, std::string& path) override;
    FileResult WriteNewProgram(const std::string& path, std::string_view bytes) override;

 private:
    int count_ = 0;
};

// Repeatable, and no secret at all. The keyed hash depends on key and text.
class FakeCrypto final : public Crypto {
 public:
    std::string RandomHex(std::size_t count) override;
    std::string HmacSha256Hex(std::string_view key, std::string_view text) const override;
    bool EqualConstantTime(std::string_view a, std::string_view b) const override { return a == b; }

 private:
    std::uint64_t drawn_ = 0;
};

}  // namespace kq
