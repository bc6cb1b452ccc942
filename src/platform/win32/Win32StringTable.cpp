// The texts as string resources of the module that contains this code. The system's loader chooses the
// language: the user's if the resources have it, else the loader's fallback. If the program has chosen a
// language, that one is used.
#include "platform/Languages.h"
#include "platform/StringTable.h"
#include "platform/win32/Win32Module.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

constexpr std::int32_t kLastId = 0xFFFF;

class Win32StringTable final : public StringTable {
 public:
    // By the rule of the resources, which have the texts of each language without a country too.
    Tongue Language() const override { return TextLanguageFor(GetThreadUILanguage()).tongue; }
    std::optional<std::string> Load(std::int32_t id) const override {
        if (id < 0 || id > kLastId) return std::nullopt;
        // With a size of 0 the loader tells where the text lies in the resource; it has no terminator there.
        const wchar_t* text = nullptr;
        const int length = LoadStringW(module_, static_cast<UINT>(id), reinterpret_cast<wchar_t*>(&text), 0);
        if (length <= 0 || !text) return std::nullopt;
        return FromWide({text, static_cast<std::size_t>(length)});
    }

 private:
    HINSTANCE module_ = ThisModule();
};

// The strings of a language lie in blocks of sixteen, each string with its length before it.
class ChosenStringTable final : public StringTable {
 public:
    explicit ChosenStringTable(TextLanguage language)
        : language_(static_cast<WORD>(language.locale)), tongue_(language.tongue) {}

    Tongue Language() const override { return tongue_; }
    std::optional<std::string> Load(std::int32_t id) const override {
        if (id < 0 || id > kLastId) return std::nullopt;
        std::wstring_view rest = Block(id / kBlock + 1);
        for (std::int32_t before = id % kBlock;; --before) {
            if (rest.empty()) return std::nullopt;
            const std::size_t length = rest[0];
            if (rest.size() - 1 < length || (before == 0 && length == 0)) return std::nullopt;
            if (before == 0) return FromWide(rest.substr(1, length));
            rest.remove_prefix(1 + length);
        }
    }

 private:
    static constexpr std::int32_t kBlock = 16;

    // Empty when there is none.
    std::wstring_view Block(std::int32_t number) const {
        const auto* const strings = reinterpret_cast<LPCWSTR>(RT_STRING);
        const HRSRC found = FindResourceExW(module_, strings, MAKEINTRESOURCEW(number), language_);
        const HGLOBAL loaded = found ? LoadResource(module_, found) : nullptr;
        if (!loaded) return {};
        return {static_cast<const wchar_t*>(LockResource(loaded)),
                SizeofResource(module_, found) / sizeof(wchar_t)};
    }

    HINSTANCE module_ = ThisModule();
    WORD language_;
    Tongue tongue_;
};

}  // namespace

std::shared_ptr<StringTable> MakeWin32StringTable(std::optional<std::int32_t> language) {
    if (language) return std::make_shared<ChosenStringTable>(TextLanguageFor(*language));
    return std::make_shared<Win32StringTable>();
}

}  // namespace kq
