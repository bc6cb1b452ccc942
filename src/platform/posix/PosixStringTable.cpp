// Chooses one of the compiled-in languages and finds texts in it by binary search.
#include "platform/posix/PosixStringTable.h"

#include <algorithm>

#include "platform/Languages.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

class PosixStringTable final : public StringTable {
 public:
    PosixStringTable(std::span<const StringEntry> entries, Tongue tongue)
        : entries_(entries), tongue_(tongue) {}

    Tongue Language() const override { return tongue_; }
    std::optional<std::string> Load(std::int32_t id) const override {
        const auto found = std::ranges::lower_bound(entries_, id, {}, &StringEntry::id);
        if (found == entries_.end() || found->id != id) return std::nullopt;
        return std::string(found->text);
    }

 private:
    std::span<const StringEntry> entries_;
    Tongue tongue_;
};

std::span<const StringEntry> EntriesOf(std::int32_t language) {
    const auto tables = LanguageTables();
    const auto found = std::ranges::find(tables, language, &LanguageTable::language);
    return found == tables.end() ? std::span<const StringEntry>() : found->entries;
}

}  // namespace

std::shared_ptr<StringTable> MakePosixStringTable(const Locale& locale) {
    const TextLanguage language = TextLanguageFor(locale.UserLocaleId());
    return std::make_shared<PosixStringTable>(EntriesOf(language.locale), language.tongue);
}

}  // namespace kq
