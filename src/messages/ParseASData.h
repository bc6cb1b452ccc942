// What a received text is: a message, profiles, a data table, a translation table or none of these.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include <kqappsession/WebData.h>
#include <kqappsession/XMLMessage.h>

namespace kq {

// What a received text was found to be; the numbers are fixed.
enum class ASDataKind : std::int32_t {
    TranslationTable = 0,
    DataTable = 1,
    Profiles = 2,
    XMLMessage = 3,
    None = 4
};

struct ASData {
    ASDataKind kind = ASDataKind::None;
    std::variant<std::monostate, std::shared_ptr<TranslationTable>, std::shared_ptr<DataTable>,
                 std::shared_ptr<Profiles>, std::shared_ptr<XMLMessage>>
        object;
    // Null when the data is not a message.
    std::shared_ptr<XMLMessage> Message() const;
};

// Tries message, profile collection, data table, translation table in this order; the first whose loader
// accepts the text wins. Never raises.
ASData ParseASData(const std::string& text);

}  // namespace kq
