// Names, causes and the raising of errors.
#include <kqappsession/Error.h>

#include "base/ErrorSentences.h"

namespace kq {
const char* NameOf(ErrorCause cause) {
    switch (cause) {
#define KQ_X(name, meaning) \
    case ErrorCause::name:  \
        return #name;
        KQ_ERROR_CAUSES(KQ_X)
#undef KQ_X
    }
    return "";
}

ErrorCause CauseOf(std::int32_t number) {
    switch (static_cast<NetError>(number)) {
        case NetError::TimedOut:
            return ErrorCause::NoReply;
        case NetError::NetworkUnreachable:
        case NetError::ConnectionAborted:
        case NetError::ConnectionReset:
        case NetError::NotConnected:
        case NetError::Refused:
        case NetError::HostUnreachable:
        case NetError::HostNotFound:
            return ErrorCause::NoConnection;
        default:
            return ErrorCause::Other;
    }
}

void Raise(RuntimeError error, std::string_view description, ErrorCause cause) {
    std::string text(description);
    if (text.empty()) {
        const auto usual = GeneralSentence(NumberOf(error));
        text = usual ? TextOf(*usual) : "Application-defined or object-defined error";
    }
    throw Error(NumberOf(error), std::string(kLibrarySource), std::move(text), cause);
}

std::string NetErrorText(std::int32_t number) {
    const auto general = GeneralSentence(number);
    return general ? TextOf(*general) : TextOf(ErrorSentence::UnknownNetError, {std::to_string(number)});
}

void Raise(NetError error, std::string_view source, std::string_view description) {
    const auto number = static_cast<std::int32_t>(error);
    throw Error(number, std::string(source),
                description.empty() ? NetErrorText(number) : std::string(description));
}

}  // namespace kq
