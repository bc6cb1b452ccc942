// What a bus client and the hub say to each other besides the messages they carry: the structs of
// BusControlList.h, and the proof. docs/wire.md shows the order and a worked example.
//
//   kType                        the message's type
//   XMLMessage Build() const     version kBusVersion, the fields in order
//   static Read(message)         the fields of any message, whatever its type; a text that is missing is
//   empty,
//                                a count that is missing or malformed is -1
//
// A block with a tag carries a message, the tag being its address (BusNameOf); a block without one is
// control.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <kqappsession/XMLMessage.h>

#include "libs/xmlbus/BusControlList.h"

namespace kq {

class Crypto;

inline constexpr std::string_view kBusVersion = "1";     // of every control message
inline constexpr std::size_t kBusRandomBytes = 32;       // of nonce and challenge
inline constexpr std::size_t kMaxBusControl = 8U << 10;  // bytes of a control message
inline constexpr std::size_t kMaxBusRandomText = 128;    // characters of a client name, nonce or challenge
// No client sends so many messages; counting on from there needs no check.
inline constexpr std::int64_t kMaxBusCount = 1'000'000'000'000'000;

// What both sides of one greeting know, and what the proofs are made over.
struct BusGreeting {
    std::string client;     // names the client over its reconnections
    std::string nonce;      // drawn by the client
    std::string challenge;  // drawn by the hub
};

// HMAC-SHA-256 under the shared key of "role:challenge:nonce:client". The roles keep a proof from being sent
// back as the other side's; the nonce and the challenge keep an old one from being used again.
std::string BusProofOf(const Crypto& crypto, std::string_view key, std::string_view role,
                       const BusGreeting& greeting);
inline constexpr std::string_view kPeerRole = "peer";
inline constexpr std::string_view kHubRole = "hub";

// A control message without fields.
XMLMessage MakeBusControl(std::string_view type);
// Raises an Error for what is no control message of this version.
XMLMessage ParseBusControl(std::string_view text);
// A count in a field, 0 to kMaxBusCount as decimal digits; -1 for anything else.
std::int64_t BusCount(const XMLMessage& message, std::string_view field);

// What the struct of a control message holds for a field of each kind.
namespace control {
using Text = std::string;
using Count = std::int64_t;
}  // namespace control

#define KQ_CONTROL_MEMBER(kind, name) control::kind name{};
#define KQ_CONTROL_STRUCT(type, sender, meaning, members) \
    struct type {                                         \
        static constexpr std::string_view kType = #type;  \
        members XMLMessage Build() const;                 \
        static type Read(const XMLMessage& message);      \
    };
KQ_BUS_CONTROLS(KQ_CONTROL_STRUCT, KQ_CONTROL_MEMBER)
#undef KQ_CONTROL_STRUCT
#undef KQ_CONTROL_MEMBER

}  // namespace kq
