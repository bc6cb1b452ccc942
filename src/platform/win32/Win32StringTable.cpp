// The texts as string resources of the module that holds this code. The system's loader chooses the language:
// the user's when the resources have it, else the fallback that the loader itself follows.
#include "platform/StringTable.h"
#include "platform/win32/Win32Module.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

constexpr std::int32_t kLastId = 0xFFFF;

class Win32StringTable final : public StringTable {
 public:
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

}  // namespace

std::shared_ptr<StringTable> MakeWin32StringTable() {
    return std::make_shared<Win32StringTable>();
}

}  // namespace kq
