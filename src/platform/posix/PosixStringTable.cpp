// Picks one of the compiled-in languages and finds texts in it by bisection.
#include "platform/posix/PosixStringTable.h"

#include <algorithm>

#include "platform/posix/StringTables.h"

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;

class PosixStringTable final : public StringTable {
 public:
    explicit PosixStringTable(std::span<const StringEntry> entries) : entries_(entries) {}

    std::optional<std::string> Load(std::int32_t id) const override {
        const auto found = std::ranges::lower_bound(entries_, id, {}, &StringEntry::id);
        if (found == entries_.end() || found->id != id) return std::nullopt;
        return std::string(found->text);
    }

 private:
    std::span<const StringEntry> entries_;
};

const LanguageTable* Find(std::int32_t language) {
    const auto tables = LanguageTables();
    const auto found = std::ranges::find(tables, language, &LanguageTable::language);
    return found == tables.end() ? nullptr : &*found;
}

}  // namespace

std::shared_ptr<StringTable> MakePosixStringTable(const Locale& locale,
                                                  std::optional<std::int32_t> language) {
    const LanguageTable* table = Find(language.value_or(locale.UserLocaleId()));
    if (!table) table = Find(kEnglish);
    return std::make_shared<PosixStringTable>(table ? table->entries : std::span<const StringEntry>());
}

}  // namespace kq
