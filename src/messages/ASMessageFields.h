// The kinds of fields that a message can have: what a struct holds for one, how it is written and read.
//
// A kind has a Type (the member's), kForm (its words in docs/messages.md), Write and Read. A field that a
// message lacks reads as an empty member.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Secret.h>
#include <kqappsession/XMLMessage.h>

namespace kq::field {

// Always written, empty or not.
struct Text {
    using Type = std::string;
    static constexpr std::string_view kForm = "text";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
    static void Read(const XMLMessage& message, std::string_view name, Type& value);
};

// Left out when empty.
struct Optional : Text {
    static constexpr std::string_view kForm = "text, left out when empty";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
};

// Always written, empty or not.
struct Password {
    using Type = Secret;
    static constexpr std::string_view kForm = "password";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
    static void Read(const XMLMessage& message, std::string_view name, Type& value);
};

// Which data a login request wants. What is sent is fixed; what was received is kept.
struct WantedData : Text {
    static constexpr std::string_view kForm = "text, always T,P";
    static constexpr std::string_view kTranslationTableAndProfiles = "T,P";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
};

// The text form of an object of web data, nested as an element; left out when empty.
struct XML : Text {
    static constexpr std::string_view kForm = "nested data, left out when empty";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
};

// The text of a message, nested as an element; left out when empty.
struct Message : Text {
    static constexpr std::string_view kForm = "nested message, left out when empty";
    static void Write(XMLMessage& message, std::string_view name, const Type& value);
};

// One element of the field's name for each text, in order.
struct Texts {
    using Type = std::vector<std::string>;
    static constexpr std::string_view kForm = "text, repeated";
    static void Write(XMLMessage& message, std::string_view name, const Type& values);
    static void Read(const XMLMessage& message, std::string_view name, Type& values);
};

// One element with a "SessionID" for each text; left out when there is no list, which is not an empty one.
// Children of other names are read like those.
struct SessionIDList {
    using Type = std::optional<std::vector<std::string>>;
    static constexpr std::string_view kItem = "SessionID";
    static constexpr std::string_view kForm = "list of SessionID, left out when there is none";
    static void Write(XMLMessage& message, std::string_view name, const Type& ids);
    static void Read(const XMLMessage& message, std::string_view name, Type& ids);
};

// An element with fields of its own, T being its struct; left out when there is none.
template <class T>
struct Element {
    using Type = std::optional<T>;
    static constexpr std::string_view kForm = "element, left out when there is none";
    static void Write(XMLMessage& message, std::string_view, const Type& element) {
        if (element) message.SetField(element->Build().Root());
    }
    static void Read(const XMLMessage& message, std::string_view name, Type& element) {
        if (const XMLElement* found = message.Root().Find(name)) element = T::Read(*found);
    }
};

}  // namespace kq::field
