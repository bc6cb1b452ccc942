// Sentences of the client that the string tables have no id for, in the languages of those tables.
#pragma once

#include <cstdint>
#include <string>

#include "messages/Texts.h"

namespace kq {

enum class ClientSentence {
    SettingsNotSaved,  // %0%: the settings file
    ClientNotStarted,  // %0%: the downloaded program, %1%: why not; ends without a full stop
    EmptyReply,        // without a full stop
};

std::string ClientText(ClientSentence sentence, const Texts& texts, const Args& args = {});

}  // namespace kq
