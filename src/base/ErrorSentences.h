// The sentences that describe run-time and connection errors, in English, as one list.
//
// The list serves both ways: an error is described by a sentence with its arguments, and a description that
// arrives is recognised, so that it can be put into another language.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Error.h>

namespace kq {

// X(name, error, sentence). %0%, %1% ... in rising order are arguments. The first sentence of a connection
// error is its general one. Sentences end other sentences, so they have no full stop.
#define KQ_ERROR_SENTENCES(X)                                                                               \
    X(InvalidProcedureCall, RuntimeError::InvalidProcedureCall, "Invalid procedure call or argument")       \
    X(Overflow, RuntimeError::Overflow, "Overflow")                                                         \
    X(TypeMismatch, RuntimeError::TypeMismatch, "Type mismatch")                                            \
    X(PathFileAccess, RuntimeError::PathFileAccess, "Path/File access error")                               \
    X(ObjectNotSet, RuntimeError::ObjectNotSet, "Object variable or With block variable not set")           \
    X(ResourceNotFound, RuntimeError::ResourceNotFound, "Resource with identifier not found")               \
    X(DuplicateKey, RuntimeError::DuplicateKey,                                                             \
      "This key is already associated with an element of this collection")                                  \
    X(Interrupted, NetError::Interrupted, "The operation was interrupted")                                  \
    X(AccessDenied, NetError::AccessDenied, "Access to the address was denied")                             \
    X(BadAddress, NetError{10014}, "The address could not be used by the network")                          \
    X(InvalidArgument, NetError::InvalidArgument, "The network was given an invalid argument")              \
    X(PortOutOfRange, NetError::InvalidArgument, "The port %0% is outside 1 to 65535")                      \
    X(TagNotText, NetError::InvalidArgument, "A tag must be UTF-8 text")                                    \
    X(TooManyConnections, NetError{10024}, "Too many connections are open")                                 \
    X(Busy, NetError{10035}, "The connection is busy")                                                      \
    X(BeingMade, NetError{10036}, "The connection is still being made")                                     \
    X(NotASocket, NetError{10038}, "The connection is not a network connection")                            \
    X(MessageTooLong, NetError::MessageTooLong, "The message is too long")                                  \
    X(TagTooLong, NetError::MessageTooLong, "A tag may have at most %0% bytes")                             \
    X(BlockTooLong, NetError::MessageTooLong, "A block may have at most 2 GiB")                             \
    X(LongTagArrived, NetError::MessageTooLong,                                                             \
      "A block with a tag of %0% bytes arrived; at most %1% are allowed")                                   \
    X(LongBlockArrived, NetError::MessageTooLong, "A block of %0% bytes arrived; at most %1% are allowed")  \
    X(KindOfAddress, NetError{10047}, "The kind of address is not supported by the network")                \
    X(AddressInUse, NetError::AddressInUse, "The address is already in use")                                \
    X(AddressNotAvailable, NetError::AddressNotAvailable, "The address is not available on this computer")  \
    X(NetworkDown, NetError{10050}, "The network is down")                                                  \
    X(NetworkUnreachable, NetError::NetworkUnreachable, "The network cannot be reached")                    \
    X(NetworkReset, NetError{10052}, "The network dropped the connection")                                  \
    X(ConnectionAborted, NetError::ConnectionAborted, "The connection was aborted")                         \
    X(GivenUp, NetError::ConnectionAborted, "The connection was given up while it was being made")          \
    X(EndedByThisSide, NetError::ConnectionAborted, "The connection was ended by this side")                \
    X(OtherProtocol, NetError::ConnectionAborted, "The other side does not speak the application protocol") \
    X(OtherVersion, NetError::ConnectionAborted,                                                            \
      "The other side speaks version %0% of the application protocol, not version 1")                       \
    X(MalformedTagArrived, NetError::ConnectionAborted, "A block with a malformed tag arrived")             \
    X(ConnectionReset, NetError::ConnectionReset, "The connection was reset by the other side")             \
    X(EndedByPeer, NetError::ConnectionReset, "The connection was closed by the other side")                \
    X(EndedInsideBlock, NetError::ConnectionReset, "The connection was closed in the middle of a block")    \
    X(NoBufferSpace, NetError::NoBufferSpace, "No buffer space is available for the connection")            \
    X(PeerDoesNotRead, NetError::NoBufferSpace,                                                             \
      "The other side does not read: more than %0% bytes would wait to be written")                         \
    X(AlreadyConnected, NetError{10056}, "The connection is already made")                                  \
    X(NotConnected, NetError::NotConnected, "There is no connection")                                       \
    X(ClosedForSending, NetError{10058}, "The connection has been closed for sending")                      \
    X(TimedOut, NetError::TimedOut, "The connection timed out")                                             \
    X(Refused, NetError::Refused, "The connection was refused")                                             \
    X(HostDown, NetError{10064}, "The host is down")                                                        \
    X(HostUnreachable, NetError::HostUnreachable, "The host cannot be reached")                             \
    X(HostNotFound, NetError::HostNotFound, "The host was not found")                                       \
    X(NoAddress, NetError::HostNotFound, "No address was given to connect to")

enum class ErrorSentence {
#define KQ_X(name, error, sentence) name,
    KQ_ERROR_SENTENCES(KQ_X)
#undef KQ_X
    // Any other number of a connection's error: %0%.
    UnknownNetError,
};

std::int32_t NumberOf(ErrorSentence sentence);  // 0 for UnknownNetError
const char* EnglishOf(ErrorSentence sentence);  // with its placeholders
// In English, with the arguments put in.
std::string TextOf(ErrorSentence sentence, const std::vector<std::string>& args = {});
[[noreturn]] void Raise(ErrorSentence sentence, std::string_view source,
                        const std::vector<std::string>& args = {});

// The first sentence of the number; nothing for a number that is not in the list.
std::optional<ErrorSentence> GeneralSentence(std::int32_t number);

struct KnownSentence {
    ErrorSentence sentence;
    std::vector<std::string> args;
};
// The sentence that describes this error: the one that `description` is, with its arguments; else, for
// the number of a connection's error that is in the list, the general one. Nothing when it is none of these.
std::optional<KnownSentence> FindSentence(std::int32_t number, std::string_view description);

}  // namespace kq
