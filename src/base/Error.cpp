// The sentences of run-time and connection errors, each table row being the whole truth about one number.
#include <kqappsession/Error.h>

namespace kq {
namespace {

std::string_view SentenceOf(RuntimeError error) {
    switch (error) {
        case RuntimeError::InvalidProcedureCall:
            return "Invalid procedure call or argument";
        case RuntimeError::Overflow:
            return "Overflow";
        case RuntimeError::TypeMismatch:
            return "Type mismatch";
        case RuntimeError::PathFileAccess:
            return "Path/File access error";
        case RuntimeError::ObjectNotSet:
            return "Object variable or With block variable not set";
        case RuntimeError::ResourceNotFound:
            return "Resource with identifier not found";
        case RuntimeError::DuplicateKey:
            return "This key is already associated with an element of this collection";
    }
    return "Application-defined or object-defined error";
}

struct Sentence {
    std::int32_t number;
    std::string_view text;
};

constexpr Sentence kNetSentences[] = {
    {10004, "The operation was interrupted"},
    {10013, "Access to the address was denied"},
    {10014, "The address could not be used by the network"},
    {10022, "The network was given an invalid argument"},
    {10024, "Too many connections are open"},
    {10035, "The connection is busy"},
    {10036, "The connection is still being made"},
    {10038, "The connection is not a network connection"},
    {10040, "The message is too long"},
    {10047, "The kind of address is not supported by the network"},
    {10048, "The address is already in use"},
    {10049, "The address is not available on this computer"},
    {10050, "The network is down"},
    {10051, "The network cannot be reached"},
    {10052, "The network dropped the connection"},
    {10053, "The connection was aborted"},
    {10054, "The connection was reset by the other side"},
    {10055, "No buffer space is available for the connection"},
    {10056, "The connection is already made"},
    {10057, "There is no connection"},
    {10058, "The connection has been closed for sending"},
    {10060, "The connection timed out"},
    {10061, "The connection was refused"},
    {10064, "The host is down"},
    {10065, "The host cannot be reached"},
    {11001, "The host was not found"},
};

}  // namespace

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
    const std::string_view text = description.empty() ? SentenceOf(error) : description;
    throw Error(NumberOf(error), std::string(kLibrarySource), std::string(text), cause);
}

std::string NetErrorText(std::int32_t number) {
    for (const auto& sentence : kNetSentences) {
        if (sentence.number == number) return std::string(sentence.text);
    }
    return "The network reported error " + std::to_string(number);
}

void Raise(NetError error, std::string_view source, std::string_view description) {
    const auto number = static_cast<std::int32_t>(error);
    throw Error(number, std::string(source),
                description.empty() ? NetErrorText(number) : std::string(description));
}

}  // namespace kq
