// The texts of the refusals that an application server sends to clients, in the client's language: English or
// Spanish. They are the server's own and stand in no string table.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "messages/Texts.h"

namespace kq {

class ErrorsByLocale {
 public:
    ErrorsByLocale();

    // The text of kqaserrLoginInvalidIntfVersion (%0%: the AppID), kqaserrLoginNoLogin or
    // kqaserrLoginLoginFailed, which mean something else here than on the client, with `args` put in. English
    // for every locale that is not in the table. RuntimeError::InvalidProcedureCall for any other code.
    std::string ASLocaleError(std::int32_t error_number, std::int32_t locale_id, const Args& args) const;

 private:
    using TextsByCode = std::map<std::int32_t, const char*>;  // by code

    const TextsByCode english_;
    const TextsByCode spanish_;
    std::map<std::int32_t, const TextsByCode*> by_locale_;
};

}  // namespace kq
