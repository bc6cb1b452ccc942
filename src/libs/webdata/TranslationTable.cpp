// The translation table: texts by key, kept in the order of their keys.
#include <kqappsession/WebData.h>

#include "libs/webdata/Forms.h"

namespace kq {

void TranslationTable::SetLanguage(std::string_view language) {
    xmltext::CheckText(language, "The table's language");
    language_ = language;
}

std::int32_t TranslationTable::Count() const {
    return static_cast<std::int32_t>(texts_.size());
}

bool TranslationTable::Exists(std::string_view key) const {
    return texts_.contains(key);
}

std::string TranslationTable::Translate(std::string_view key) const {
    const auto found = texts_.find(key);
    return found == texts_.end() ? std::string(key) : found->second;
}

void TranslationTable::Set(std::string_view key, std::string_view text) {
    xmltext::CheckText(key, "A key");
    xmltext::CheckText(text, "The text of a key");
    texts_.insert_or_assign(std::string(key), std::string(text));
}

void TranslationTable::Remove(std::string_view key) {
    if (const auto found = texts_.find(key); found != texts_.end()) texts_.erase(found);
}

std::vector<std::string> TranslationTable::Keys() const {
    std::vector<std::string> keys;
    for (const auto& [key, text] : texts_)
        keys.push_back(key);
    return keys;
}

std::string TranslationTable::ToXML() const {
    xmltext::Writer writer;
    writer.Open("TranslationTable").Attribute("language", language_);
    for (const auto& [key, text] : texts_)
        writer.Open("Text").Attribute("key", key).Text(text).Close();
    return writer.Close().Take();
}

void TranslationTable::LoadXML(std::string_view xml) {
    *this = WebDataReader(xml, "TranslationTable").ReadTranslationTable();
}

}  // namespace kq
