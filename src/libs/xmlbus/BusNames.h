// Addresses as one text, in which the hub finds the way of a message without reading the message.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/XMLMessage.h>

namespace kq {

inline constexpr std::size_t kMaxBusName = 512;  // bytes of an address as one text

// "ZEB" for the type "ZEB" with an empty subtype, "AS/Broadcast" for the type "AS" and the subtype
// "Broadcast". The first "/" ends the type; "%" and "/" inside a type become "%25" and "%2F". Raises
// RuntimeError::InvalidProcedureCall for an address that no message can go to: an empty type, control
// characters, ill-formed UTF-8, or more than kMaxBusName bytes.
std::string BusNameOf(const BusAddress& address);

// The address that a text names, or nothing when it is not exactly what BusNameOf writes.
std::optional<BusAddress> BusAddressOf(std::string_view name);

}  // namespace kq
