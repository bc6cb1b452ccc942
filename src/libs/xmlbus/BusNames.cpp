// Every address has one text and every text at most one address, so that hub and clients can compare either.
#include "libs/xmlbus/BusNames.h"

#include <algorithm>

#include <kqappsession/Error.h>

#include "base/Utf.h"

namespace kq {
namespace {

bool IsPlainText(std::string_view text) {
    const auto control = [](unsigned char c) { return c < ' ' || c == 0x7F; };
    return std::none_of(text.begin(), text.end(), control) && IsValidUtf8(text);
}

std::string EncodeType(std::string_view type) {
    std::string name;
    for (const char c : type) {
        if (c == '%') {
            name += "%25";
        } else if (c == '/') {
            name += "%2F";
        } else {
            name += c;
        }
    }
    return name;
}

std::optional<std::string> DecodeType(std::string_view name) {
    std::string type;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] != '%') {
            type += name[at];
            continue;
        }
        const auto code = name.substr(at, 3);
        if (code != "%25" && code != "%2F") return std::nullopt;
        type += code == "%25" ? '%' : '/';
        at += 2;
    }
    return type;
}

}  // namespace

std::string BusNameOf(const BusAddress& address) {
    std::string name = EncodeType(address.type);
    if (!address.subtype.empty()) name += '/' + address.subtype;
    if (address.type.empty() || name.size() > kMaxBusName || !IsPlainText(name)) {
        Raise(RuntimeError::InvalidProcedureCall, "This is not an address of the bus");
    }
    return name;
}

std::optional<BusAddress> BusAddressOf(std::string_view name) {
    const auto slash = name.find('/');
    const auto type = DecodeType(name.substr(0, slash));
    if (!type || type->empty() || name.size() > kMaxBusName || !IsPlainText(name)) return std::nullopt;
    if (slash == std::string_view::npos) return BusAddress{*type, {}};
    if (slash + 1 == name.size()) return std::nullopt;
    return BusAddress{*type, std::string(name.substr(slash + 1))};
}

}  // namespace kq
