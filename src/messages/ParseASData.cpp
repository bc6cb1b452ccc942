#include "messages/ParseASData.h"

#include <exception>
#include <utility>

namespace kq {
namespace {

// Null when T's loader refuses the text.
template <class T>
std::shared_ptr<T> Load(const std::string& text) {
    try {
        auto object = std::make_shared<T>();
        object->LoadXML(text);
        return object;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace

std::shared_ptr<XMLMessage> ASData::Message() const {
    const auto* message = std::get_if<std::shared_ptr<XMLMessage>>(&object);
    return message ? *message : nullptr;
}

ASData ParseASData(const std::string& text) {
    if (auto message = Load<XMLMessage>(text)) return {ASDataKind::XMLMessage, std::move(message)};
    if (auto profiles = Load<Profiles>(text)) return {ASDataKind::Profiles, std::move(profiles)};
    if (auto table = Load<DataTable>(text)) return {ASDataKind::DataTable, std::move(table)};
    if (auto texts = Load<TranslationTable>(text)) return {ASDataKind::TranslationTable, std::move(texts)};
    return {};
}

}  // namespace kq
