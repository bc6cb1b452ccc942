// The messages as structs: fill the members and Build, or Read and look at the members.
//
//   ASRegisterRequest request;
//   request.AppID = "Demo";
//   connection.Send(request.Build());
//
// Every struct holds a member for each field of its row in ASMessageList.h, named as the field, and
//
//   kType                        the message's type
//   kAppID                       a field's name, likewise for each field: for one field of a message as it is
//   XMLMessage Build() const     version "1", fields in order; Bus messages in the schema kZEBSchemas, no
//                                destination. Raises the errors of XMLMessage for what XML cannot carry and
//                                for nested texts that are none.
//   static Read(message)         the fields of any message, whatever its type; what is missing stays empty
//   static Read(element)         the same of an element's children
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/XMLMessage.h>

#include "messages/ASMessageFields.h"
#include "messages/ASMessageList.h"

namespace kq {

// The version of every message that is built here.
inline constexpr std::string_view kMessageVersion = "1";
// The schema namespace of messages between servers.
inline constexpr std::string_view kZEBSchemas = "ZEBSchemas";

// What the message of a client may hold, whichever way it comes. A million small elements would take seconds
// and hundreds of megabytes.
inline constexpr XMLMessage::Limits kClientMessageLimits{.elements = 100'000};

// Whether a Boolean field says yes: exactly "True", nothing else.
bool IsTrue(std::string_view text);

#define KQ_MEMBER(kind, name, meaning)                 \
    static constexpr std::string_view k##name = #name; \
    kq::field::kind::Type name;
#define KQ_STRUCT(channel, type, purpose, members)       \
    struct type {                                        \
        static constexpr std::string_view kType = #type; \
        members XMLMessage Build() const;                \
        static type Read(const XMLMessage& message);     \
        static type Read(const XMLElement& element);     \
    };
KQ_AS_MESSAGES(KQ_STRUCT, KQ_MEMBER)
#undef KQ_STRUCT
#undef KQ_MEMBER

// Fields that an application server adds to a client's request on its way to the login server, and that come
// back with the answer: the server's own reply address, and what names the client's connection.
inline constexpr std::string_view kReturnMsgType = RequestASRegistration::kReturnMsgType;
inline constexpr std::string_view kReturnSubType = RequestASRegistration::kReturnSubType;
inline constexpr std::string_view kTransID = RequestASRegistration::kTransID;
// Likewise, the tag of the client's request; left out when it has none.
inline constexpr std::string_view kReturnTag = RequestASRegistration::kReturnTag;

// The list as data.
enum class MessageChannel { Client, Bus, Element };

struct FieldRow {
    std::string_view name;
    std::string_view form;
    std::string_view meaning;
};

struct MessageRow {
    MessageChannel channel;
    std::string_view type;
    std::string_view purpose;
    std::vector<FieldRow> fields;
};

// Every row, in the list's order.
const std::vector<MessageRow>& MessageCatalogue();

}  // namespace kq
