// From the DOS header to the version resource. The file may come from anywhere: every offset in it is checked
// against what there is before it is followed, and nothing is followed more than three directories deep.
#include "platform/posix/PeImage.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kq {
namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

constexpr std::size_t kLargestResourceSection = 64U << 20;
constexpr std::size_t kDirectorySize = 8;  // of one entry of the optional header's list
constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kSubdirectory = 0x80000000U;
constexpr std::uint32_t kEnglish = 1033;

class InputFile {
 public:
    explicit InputFile(const std::string& path) {
        if (path.find('\0') != std::string::npos) return;
        descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        struct stat attributes {};
        if (descriptor_ != -1 && ::fstat(descriptor_, &attributes) == 0 && S_ISREG(attributes.st_mode)) {
            size_ = static_cast<std::uint64_t>(attributes.st_size);
        }
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() {
        if (descriptor_ != -1) ::close(descriptor_);
    }

    // Exactly `count` bytes from `at`, or nothing.
    std::optional<Bytes> Read(std::uint64_t at, std::size_t count) const {
        if (at > size_ || count > size_ - at) return std::nullopt;
        Bytes bytes(count);
        for (std::size_t done = 0; done < count;) {
            const ssize_t got =
                ::pread(descriptor_, bytes.data() + done, count - done, static_cast<off_t>(at + done));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return std::nullopt;
            done += static_cast<std::size_t>(got);
        }
        return bytes;
    }

    std::uint64_t Size() const { return size_; }

 private:
    int descriptor_ = -1;
    std::uint64_t size_ = 0;
};

struct ResourceSection {
    std::uint32_t address = 0;    // where the section is loaded
    std::uint32_t directory = 0;  // where its root directory is loaded
    Bytes bytes;
};

std::optional<ResourceSection> FindResourceSection(const InputFile& file) {
    const auto dos = file.Read(0, 64);
    if (!dos || Word(*dos, 0) != 0x5A4D) return std::nullopt;
    const std::uint64_t header_at = *DoubleWord(*dos, 60);
    const auto header = file.Read(header_at, 24);  // signature and file header
    if (!header || DoubleWord(*header, 0) != 0x00004550U) return std::nullopt;
    const std::size_t section_count = *Word(*header, 6);
    const std::size_t optional_size = *Word(*header, 20);
    const auto optional = file.Read(header_at + 24, optional_size);
    if (!optional) return std::nullopt;

    const auto magic = Word(*optional, 0);
    if (magic != 0x10B && magic != 0x20B) return std::nullopt;
    const std::size_t directories_at = magic == 0x10B ? 96 : 112;
    const auto directory_count = DoubleWord(*optional, directories_at - 4);
    const auto root = DoubleWord(*optional, directories_at + 2 * kDirectorySize);
    if (!directory_count || *directory_count < 3 || !root || *root == 0) return std::nullopt;

    const auto sections = file.Read(header_at + 24 + optional_size, section_count * 40);
    if (!sections) return std::nullopt;
    for (std::size_t at = 0; at < sections->size(); at += 40) {
        const std::uint32_t virtual_size = *DoubleWord(*sections, at + 8);
        const std::uint32_t address = *DoubleWord(*sections, at + 12);
        const std::uint32_t raw_size = *DoubleWord(*sections, at + 16);
        const std::uint32_t raw_at = *DoubleWord(*sections, at + 20);
        if (*root < address || *root - address >= std::max(virtual_size, raw_size)) continue;
        if (raw_size > kLargestResourceSection) return std::nullopt;
        auto bytes = file.Read(raw_at, raw_size);
        if (!bytes) return std::nullopt;
        return ResourceSection{address, *root, std::move(*bytes)};
    }
    return std::nullopt;
}

// An entry of a resource directory: by number, or by name with the highest bit set in `id`.
struct DirectoryEntry {
    std::uint32_t id;
    std::uint32_t offset;  // from the root; highest bit: of a directory
};

std::vector<DirectoryEntry> EntriesOf(View root, std::size_t directory) {
    std::vector<DirectoryEntry> entries;
    const auto named = Word(root, directory + 12);
    const auto numbered = Word(root, directory + 14);
    if (!named || !numbered) return entries;
    const std::size_t count = std::size_t{*named} + *numbered;
    for (std::size_t i = 0; i < count; ++i) {
        const auto id = DoubleWord(root, directory + 16 + i * 8);
        const auto offset = DoubleWord(root, directory + 20 + i * 8);
        if (!id || !offset) break;
        entries.push_back({*id, *offset});
    }
    return entries;
}

const DirectoryEntry* FindId(const std::vector<DirectoryEntry>& entries, std::uint32_t id) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [id](const auto& e) { return e.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

// The place of the data entry of the version resource: of no language, else in English, else the first.
std::optional<std::size_t> FindVersionEntry(View root) {
    const auto types = EntriesOf(root, 0);
    const DirectoryEntry* const type = FindId(types, kVersionType);
    if (!type || (type->offset & kSubdirectory) == 0) return std::nullopt;
    const auto names = EntriesOf(root, type->offset & ~kSubdirectory);
    if (names.empty() || (names.front().offset & kSubdirectory) == 0) return std::nullopt;
    const auto languages = EntriesOf(root, names.front().offset & ~kSubdirectory);
    if (languages.empty()) return std::nullopt;
    const DirectoryEntry* language = FindId(languages, 0);
    if (!language) language = FindId(languages, kEnglish);
    if (!language) language = &languages.front();
    if ((language->offset & kSubdirectory) != 0) return std::nullopt;
    return language->offset;
}

}  // namespace

std::optional<std::uint16_t> Word(View bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < 2) return std::nullopt;
    return static_cast<std::uint16_t>(bytes[at] | (bytes[at + 1] << 8));
}

std::optional<std::uint32_t> DoubleWord(View bytes, std::size_t at) {
    const auto low = Word(bytes, at);
    const auto high = low ? Word(bytes, at + 2) : std::nullopt;
    if (!high) return std::nullopt;
    return (std::uint32_t{*high} << 16) | *low;
}

std::optional<std::vector<std::uint8_t>> ReadVersionResource(const std::string& path) {
    const InputFile file(path);
    const auto section = FindResourceSection(file);
    if (!section) return std::nullopt;
    const View bytes(section->bytes);
    const std::size_t root_at = section->directory - section->address;
    if (root_at >= bytes.size()) return std::nullopt;
    const View root = bytes.subspan(root_at);
    const auto entry = FindVersionEntry(root);
    if (!entry) return std::nullopt;
    const auto address = DoubleWord(root, *entry);
    const auto size = DoubleWord(root, *entry + 4);
    if (!address || !size || *address < section->address) return std::nullopt;
    const std::size_t at = *address - section->address;
    if (at > bytes.size() || *size > bytes.size() - at) return std::nullopt;
    const View data = bytes.subspan(at, *size);
    return Bytes(data.begin(), data.end());
}

}  // namespace kq
