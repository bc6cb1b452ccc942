// The fakes that hold a little more than a value.
#include "support/FakeSystem.h"

#include "base/Convert.h"
#include "base/Utf.h"

namespace kq {
namespace {

bool IsNumericAddress(const std::string& host) {
    return host.find(':') != std::string::npos ||
           (!host.empty() && host.find_first_not_of("0123456789.") == std::string::npos);
}

std::uint64_t Mix(std::uint64_t hash, std::string_view text) {
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    return (hash ^ text.size()) * 0x9E3779B97F4A7C15ULL;
}

std::string Hex(std::uint64_t value, std::size_t digits) {
    std::string text(digits, '0');
    for (std::size_t i = digits; i-- > 0; value >>= 4)
        text[i] = "0123456789abcdef"[value & 15];
    return text;
}

std::string_view TrimAsProfile(std::string_view text) {
    text = Trim(text);
    const bool quoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

std::vector<std::string> FakeResolver::Find(const std::string& host) {
    asked.push_back(host);
    const auto entry = names.find(host.empty() ? "localhost" : host);
    if (entry != names.end()) return entry->second;
    if (IsNumericAddress(host)) return {host};
    return {};
}

std::string FakeResolver::FirstIPv4(const std::string& host) {
    for (const auto& address : Find(host)) {
        if (address.find(':') == std::string::npos) return address;
    }
    return {};
}

void FakeResolver::Resolve(const std::string& host, const Owner& owner,
                           std::function<void(std::vector<std::string>)> done) {
    auto answer = owner.Bind([done = std::move(done), addresses = Find(host)] { done(addresses); });
    if (delay.count() > 0) {
        loop_->StartTimer(delay, std::move(answer));
    } else {
        loop_->Post(std::move(answer));
    }
}

std::optional<std::string> FakeFolders::SpecialFolder(int csidl) const {
    const auto entry = special.find(csidl);
    if (entry == special.end()) return std::nullopt;
    return entry->second;
}

bool FakeFolders::CreateFolder(const std::string& path) {
    create_calls.push_back(path);
    const auto is_there = [this](const std::string& folder) {
        if (folder.empty() || folder.back() == ':' || folders.count(folder) != 0) return true;
        for (const auto& [csidl, known] : special) {
            // The special folder and all above it.
            if (known == folder || known.rfind(folder + separator, 0) == 0) return true;
        }
        return false;
    };
    if (is_there(path) || files.count(path) != 0) return false;
    const std::size_t end = path.rfind(separator);
    if (end == std::string::npos || !is_there(path.substr(0, end))) return false;
    return folders.insert(path).second;
}

std::string FakeProfileFile::Read(const std::string& section, const std::string& key,
                                  const std::string& default_value, std::size_t size,
                                  const std::string& path) const {
    std::string_view value = default_value;
    while (!value.empty() && value.back() == ' ')
        value.remove_suffix(1);
    if (const auto file = files.find(path); file != files.end()) {
        if (const auto part = file->second.find(UpperCase(Trim(section))); part != file->second.end()) {
            const auto entry = part->second.find(UpperCase(Trim(key)));
            if (entry != part->second.end()) value = TrimAsProfile(entry->second);
        }
    }
    return std::string(FirstCharacters(value, size > 0 ? size - 1 : 0));
}

bool FakeProfileFile::Write(const std::string& section, const std::string& key, const std::string& value,
                            const std::string& path) {
    using namespace std::string_view_literals;
    if (read_only || value.find_first_of("\r\n\0"sv) != std::string::npos) return false;
    files[path][UpperCase(Trim(section))][UpperCase(Trim(key))] = value;
    ++write_count;
    return true;
}

std::optional<std::string> FakeStrings::Load(std::int32_t text_id) const {
    const auto entry = texts.find(text_id);
    if (entry == texts.end()) return std::nullopt;
    return entry->second;
}

std::string FakeProcess::Start(const std::string& path) {
    if (start_failure.empty()) started.push_back(path);
    return start_failure;
}

std::unique_ptr<VersionBlock> FakeVersionResource::Load(const std::string& path) const {
    class Held final : public VersionBlock {
     public:
        explicit Held(Block block) : block_(std::move(block)) {}
        std::vector<std::uint8_t> Translation() const override { return block_.translation; }
        std::optional<std::string> Text(const std::string& sub_block) const override {
            for (const auto& [name, text] : block_.texts) {
                if (EqualsIgnoringCase(name, sub_block)) return text;
            }
            return std::nullopt;
        }

     private:
        Block block_;
    };
    const auto entry = blocks.find(path);
    if (entry == blocks.end()) return nullptr;
    return std::make_unique<Held>(entry->second);
}

std::string FakeCrypto::RandomHex(std::size_t count) {
    std::string text;
    while (text.size() < 2 * count)
        text += Hex(Mix(0xCBF29CE484222325ULL, std::to_string(++drawn_)), 16);
    text.resize(2 * count);
    return text;
}

std::string FakeCrypto::HmacSha256Hex(std::string_view key, std::string_view text) const {
    std::string hash;
    std::uint64_t state = 0xCBF29CE484222325ULL;
    for (int part = 0; part < 4; ++part) {
        state = Mix(Mix(Mix(state, key), text), key);
        hash += Hex(state, 16);
    }
    return hash;
}

bool FakeShortcuts::Create(const std::string& path, const Shortcut& shortcut) {
    if (can_create) made[path] = shortcut;
    return can_create;
}

FileResult FakeTempFiles::CreateUnique(std::string_view prefix, std::string& path) {
    if (next_failure.error != 0) return std::exchange(next_failure, {});
    const std::string number = std::to_string(++count_);
    path = folder + std::string(prefix.substr(0, 3)) + std::string(4 - number.size(), '0') + number + ".tmp";
    files[path];
    return {};
}

FileResult FakeTempFiles::WriteNewProgram(const std::string& path, std::string_view bytes) {
    if (next_failure.error != 0) return std::exchange(next_failure, {});
    if (!files.emplace(path, bytes).second) return {80, "The file exists"};
    return {};
}

}  // namespace kq
