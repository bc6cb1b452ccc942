// Messages as tests write and read them, and a sink for what an application server raises.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "automation/Host.h"

namespace kq {

using Fields = std::vector<std::pair<std::string, std::string>>;
using MessageObject = Ptr<_XMLMessage>;

_bstr_t BstrOf(const std::string& text);
MessageObject MessageOf(const std::string& type, const Fields& fields = {}, const std::string& version = "1");
std::string TypeOf(const MessageObject& message);
std::string FieldOf(const MessageObject& message, const std::string& name);
// An element with a child for each text: "SessionIDs", "SessionID".
Ptr<_XMLElement> ListOf(const std::string& name, const std::string& child,
                        const std::vector<std::string>& texts);
// What a session record says of itself.
std::string IdOf(const Ptr<_KQAppSessionInfo>& session);

// The announcement of an application server, copied when it was sent.
struct Announcement {
    std::string state;                  // "C", "E", "D"
    std::vector<std::string> sessions;  // of the list; "no list" when there is none
    Ptr<_XMLElement> info;
    std::string Text(const std::string& name) const;                // "" when it is not there
    std::vector<std::string> Texts(const std::string& name) const;  // of all elements of that name
    bool Has(const std::string& name) const;
};

// A sink for everything that the session manager raises. Each event is a line with its arguments: "Connected
// S17", "ReceivedData S17 <data> 128 tag". It takes no argument of another type than the type library says.
class ServerEvents final : public HostObject {
 public:
    ServerEvents() { events = __uuidof(_KQAppSessServerEvents); }

    // What followed the name in the events of that name.
    std::vector<std::string> Of(const std::string& name) const;
    std::vector<Announcement> announcements;
    std::vector<Announcement> Announced(const std::string& state) const;
    void Forget();

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                     EXCEPINFO*, UINT*) override;
};

}  // namespace kq
