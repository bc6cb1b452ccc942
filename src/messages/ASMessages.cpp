// Builders and readers, made from the list.
#include "messages/ASMessages.h"

#include <utility>

namespace kq {
namespace field {

void Text::Write(XMLMessage& message, std::string_view name, const Type& value) {
    message.SetField(name, value);
}
void Text::Read(const XMLMessage& message, std::string_view name, Type& value) {
    value = message.Field(name);
}

void Optional::Write(XMLMessage& message, std::string_view name, const Type& value) {
    if (!value.empty()) message.SetField(name, value);
}

void Password::Write(XMLMessage& message, std::string_view name, const Type& value) {
    message.SetField(name, value.Reveal());
}

void Password::Read(const XMLMessage& message, std::string_view name, Type& value) {
    value = Secret(message.Field(name));
}

void WantedData::Write(XMLMessage& message, std::string_view name, const Type&) {
    message.SetField(name, kTranslationTableAndProfiles);
}

void XML::Write(XMLMessage& message, std::string_view name, const Type& value) {
    if (!value.empty()) message.SetXMLField(name, value);
}

void Message::Write(XMLMessage& message, std::string_view name, const Type& value) {
    if (value.empty()) return;
    XMLMessage nested;
    nested.LoadXML(value);
    message.SetMessageField(name, nested);
}

void Texts::Write(XMLMessage& message, std::string_view name, const Type& values) {
    for (const auto& value : values)
        message.Root().Add(name, value);
}

void Texts::Read(const XMLMessage& message, std::string_view name, Type& values) {
    for (const auto& child : message.Root().Children()) {
        if (child.Name() == name) values.push_back(child.Text());
    }
}

void SessionIDList::Write(XMLMessage& message, std::string_view name, const Type& ids) {
    if (!ids) return;
    XMLElement list(name);
    for (const auto& id : *ids)
        list.Add(kItem, id);
    message.SetField(std::move(list));
}

void SessionIDList::Read(const XMLMessage& message, std::string_view name, Type& ids) {
    const XMLElement* list = message.Root().Find(name);
    if (!list) return;
    ids.emplace();
    for (const auto& child : list->Children())
        ids->push_back(child.Text());
}

}  // namespace field

namespace {

XMLMessage Header(MessageChannel channel, std::string_view type) {
    XMLMessage message(type, kMessageVersion);
    if (channel == MessageChannel::Bus) message.SetSchema(kZEBSchemas);
    return message;
}

}  // namespace

bool IsTrue(std::string_view text) {
    return text == "True";
}

// NOLINTBEGIN(bugprone-macro-parentheses): kinds and members are names, which bear no parentheses.
#define KQ_WRITE(kind, name, meaning) field::kind::Write(message, #name, name);
#define KQ_BUILD(channel, type, purpose, writes)                     \
    XMLMessage type::Build() const {                                 \
        XMLMessage message = Header(MessageChannel::channel, kType); \
        writes return message;                                       \
    }
KQ_AS_MESSAGES(KQ_BUILD, KQ_WRITE)
#undef KQ_BUILD
#undef KQ_WRITE

#define KQ_READ_FIELD(kind, name, meaning) field::kind::Read(message, #name, result.name);
#define KQ_READ(channel, type, purpose, reads)                    \
    type type::Read([[maybe_unused]] const XMLMessage& message) { \
        type result;                                              \
        reads return result;                                      \
    }                                                             \
    type type::Read(const XMLElement& element) {                  \
        XMLMessage message;                                       \
        message.Root() = element;                                 \
        return Read(message);                                     \
    }
KQ_AS_MESSAGES(KQ_READ, KQ_READ_FIELD)
#undef KQ_READ
#undef KQ_READ_FIELD
// NOLINTEND(bugprone-macro-parentheses)

const std::vector<MessageRow>& MessageCatalogue() {
#define KQ_FIELD_ROW(kind, name, meaning) FieldRow{#name, field::kind::kForm, meaning},
#define KQ_ROW(channel, type, purpose, fields) MessageRow{MessageChannel::channel, #type, purpose, {fields}},
    static const std::vector<MessageRow> kRows = {KQ_AS_MESSAGES(KQ_ROW, KQ_FIELD_ROW)};
#undef KQ_ROW
#undef KQ_FIELD_ROW
    return kRows;
}

}  // namespace kq
