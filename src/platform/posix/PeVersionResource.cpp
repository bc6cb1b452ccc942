// The tree inside a version resource: blocks of {length, value length, type, name, value, children}, aligned
// to four bytes. The walk ends at a damaged block.
#include <algorithm>
#include <utility>

#include "base/Convert.h"
#include "base/Utf.h"
#include "platform/VersionResource.h"
#include "platform/posix/PeImage.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

using View = std::span<const std::uint8_t>;

struct Block {
    std::string name;
    std::uint16_t value_length = 0;  // in characters when it is text, else in bytes
    bool is_text = false;
    std::size_t value = 0;  // offsets into the whole resource
    std::size_t children = 0;
    std::size_t end = 0;
};

std::size_t Aligned(std::size_t at) {
    return (at + 3) & ~std::size_t{3};
}

// Characters from `at` to the terminator or to `end`.
std::u16string CharactersAt(View bytes, std::size_t at, std::size_t end) {
    std::u16string text;
    for (; at + 2 <= end; at += 2) {
        const auto unit = Word(bytes, at);
        if (!unit || *unit == 0) break;
        text.push_back(static_cast<char16_t>(*unit));
    }
    return text;
}

// The block at `at`, which must end by `limit`.
std::optional<Block> BlockAt(View bytes, std::size_t at, std::size_t limit) {
    const auto length = Word(bytes, at);
    const auto value_length = Word(bytes, at + 2);
    const auto type = Word(bytes, at + 4);
    if (!length || !value_length || !type || *length < 6 || at > limit || *length > limit - at)
        return std::nullopt;
    Block block;
    block.end = at + *length;
    block.value_length = *value_length;
    block.is_text = *type == 1;
    const std::u16string name = CharactersAt(bytes, at + 6, block.end);
    block.name = Utf16ToUtf8(name);
    block.value = std::min(Aligned(at + 6 + (name.size() + 1) * 2), block.end);
    const std::size_t value_size = std::size_t{*value_length} * (block.is_text ? 2 : 1);
    block.children = std::min(Aligned(std::min(block.value + value_size, block.end)), block.end);
    return block;
}

std::optional<Block> FindChild(View bytes, const Block& parent, std::string_view name) {
    for (std::size_t at = parent.children; at < parent.end;) {
        auto child = BlockAt(bytes, at, parent.end);
        if (!child) break;
        if (EqualsIgnoringCase(child->name, name)) return child;
        at = Aligned(child->end);
    }
    return std::nullopt;
}

class PeVersionBlock final : public VersionBlock {
 public:
    PeVersionBlock(std::vector<std::uint8_t> bytes, Block root)
        : bytes_(std::move(bytes)), root_(std::move(root)) {}

    std::vector<std::uint8_t> Translation() const override {
        const auto block = Find("\\VarFileInfo\\Translation");
        if (!block) return {};
        const std::size_t size = std::min<std::size_t>(block->value_length, block->end - block->value);
        const View value = View(bytes_).subspan(block->value, size);
        return {value.begin(), value.end()};
    }

    std::optional<std::string> Text(const std::string& sub_block) const override {
        const auto block = Find(sub_block);
        if (!block || !block->is_text) return std::nullopt;
        // Some resource compilers count a text's length in bytes: the terminator or the block's end is what
        // holds.
        const std::size_t size = std::min(std::size_t{block->value_length} * 2, block->end - block->value);
        return Utf16ToUtf8(CharactersAt(bytes_, block->value, block->value + size));
    }

 private:
    std::optional<Block> Find(std::string_view path) const {
        std::optional<Block> block = root_;
        for (const auto& name : Split(path, '\\')) {
            if (name.empty()) continue;
            block = FindChild(bytes_, *block, name);
            if (!block) return std::nullopt;
        }
        return block;
    }

    std::vector<std::uint8_t> bytes_;
    Block root_;
};

class PeVersionResource final : public VersionResource {
 public:
    std::unique_ptr<VersionBlock> Load(const std::string& path) const override {
        auto bytes = ReadVersionResource(path);
        if (!bytes) return nullptr;
        auto root = BlockAt(*bytes, 0, bytes->size());
        if (!root || root->name != "VS_VERSION_INFO") return nullptr;
        return std::make_unique<PeVersionBlock>(std::move(*bytes), std::move(*root));
    }
};

}  // namespace

std::shared_ptr<VersionResource> MakePeVersionResource() {
    return std::make_shared<PeVersionResource>();
}

}  // namespace kq
