#include "automation/SessionEvents.h"

#include <algorithm>
#include <iterator>

#include "automation/WideText.h"

namespace kq {
namespace {

constexpr wchar_t kInfo[] = L"ApplicationInfos/ApplicationInfo";

std::string Taken(BSTR text) {
    const _bstr_t owned(text, false);
    return Narrow(text);
}

template <class Interface>
std::string TextOf(const Ptr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    return Narrow(Read(object, get).c_str());
}

// The argument at a position of the event's declaration, which must be of that type.
const VARIANT& Argument(const DISPPARAMS& arguments, UINT position, VARTYPE type) {
    static const VARIANT none{};
    EXPECT_LT(position, arguments.cArgs);
    if (position >= arguments.cArgs) return none;
    const VARIANT& argument = arguments.rgvarg[arguments.cArgs - 1 - position];
    EXPECT_EQ(argument.vt, type);
    return argument.vt == type ? argument : none;
}

template <class Interface>
Ptr<Interface> ObjectAt(const DISPPARAMS& arguments, UINT position) {
    const Ptr<IDispatch> object(Argument(arguments, position, VT_DISPATCH).pdispVal);
    auto result = object.As<Interface>();
    EXPECT_TRUE(result);
    return result;
}

std::string SessionAt(const DISPPARAMS& arguments, UINT position) {
    return IdOf(ObjectAt<_KQAppSessionInfo>(arguments, position));
}
std::string NumberAt(const DISPPARAMS& arguments, UINT position) {
    return std::to_string(Argument(arguments, position, VT_I4).lVal);
}
std::string TextAt(const DISPPARAMS& arguments, UINT position) {
    return Narrow(Argument(arguments, position, VT_BSTR).bstrVal);
}

std::vector<Ptr<_XMLElement>> ChildrenOf(const Ptr<_XMLElement>& element) {
    long count = 0;
    if (element) element->get_Count(&count);
    std::vector<Ptr<_XMLElement>> children(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        element->get_Item(_variant_t(i + 1), children[static_cast<std::size_t>(i)].Out());
    return children;
}

Announcement AnnouncementIn(const MessageObject& message) {
    Announcement result;
    message->Element(_bstr_t(kInfo), result.info.Out());
    result.state = result.Text("InfoState");
    Ptr<_XMLElement> list;
    result.info->get_Item(_variant_t(L"Sessions"), list.Out());
    if (!list) result.sessions = {"no list"};
    for (const auto& session : ChildrenOf(list))
        result.sessions.push_back(TextOf(session, &_XMLElement::get_Text));
    return result;
}

}  // namespace

_bstr_t BstrOf(const std::string& text) {
    return _bstr_t(Wide(text).c_str());
}

MessageObject MessageOf(const std::string& type, const Fields& fields, const std::string& version) {
    auto message = NewMessage();
    message->put_Type(BstrOf(type));
    message->put_Version(BstrOf(version));
    for (const auto& [name, value] : fields)
        message->put_Field(BstrOf(name), BstrOf(value));
    return message;
}

std::string TypeOf(const MessageObject& message) {
    return TextOf(message, &_XMLMessage::get_Type);
}

std::string FieldOf(const MessageObject& message, const std::string& name) {
    BSTR text = nullptr;
    EXPECT_EQ(message->get_Field(BstrOf(name), &text), S_OK);
    return Taken(text);
}

Ptr<_XMLElement> ListOf(const std::string& name, const std::string& child,
                        const std::vector<std::string>& texts) {
    auto list = Create<_XMLElement>(L"KQXMLMessageLib.XMLElement");
    list->Initialize(BstrOf(name), nullptr);
    for (const auto& text : texts)
        list->Add(BstrOf(child), BstrOf(text));
    return list;
}

std::string IdOf(const Ptr<_KQAppSessionInfo>& session) {
    return session ? TextOf(session, &_KQAppSessionInfo::get_SessionID) : "no session";
}

std::string Announcement::Text(const std::string& name) const {
    BSTR text = nullptr;
    info->TextOf(BstrOf(name), &text);
    return Taken(text);
}

std::vector<std::string> Announcement::Texts(const std::string& name) const {
    std::vector<std::string> texts;
    for (const auto& child : ChildrenOf(info)) {
        if (TextOf(child, &_XMLElement::get_Name) == name)
            texts.push_back(TextOf(child, &_XMLElement::get_Text));
    }
    return texts;
}

bool Announcement::Has(const std::string& name) const {
    return !Texts(name).empty();
}

HRESULT ServerEvents::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                             UINT*) {
    const DISPPARAMS& given = *parameters;
    switch (id) {
        case 1:
            heard.push_back("Connected " + SessionAt(given, 0));
            break;
        case 2:
            heard.push_back("ReceivedData " + SessionAt(given, 0) + " " + TextAt(given, 1) + " " +
                            NumberAt(given, 2) + " " + TextAt(given, 3));
            break;
        case 3:
            heard.push_back("Disconnected " + SessionAt(given, 0));
            break;
        case 4:
            heard.push_back("Error " + NumberAt(given, 0) + " " + TextAt(given, 1));
            break;
        case 5: {
            const auto client = ObjectAt<_APClient>(given, 1);
            heard.push_back("SessionError " + SessionAt(given, 0) + " " +
                            TextOf(client, &_APClient::get_Identifier) + " " + NumberAt(given, 2) + " " +
                            TextAt(given, 3));
            break;
        }
        case 6: {
            const MessageObject message =
                Ptr<IDispatch>(*Argument(given, 0, VT_BYREF | VT_DISPATCH).ppdispVal).As<_XMLMessage>();
            heard.push_back("XMLBusSend " + TypeOf(message));
            if (TypeOf(message) == "ASBroadcastInfo") announcements.push_back(AnnouncementIn(message));
            break;
        }
        case 7:
            heard.push_back("XMLBusReceive " + TypeOf(ObjectAt<_XMLMessage>(given, 0)) + " " +
                            std::to_string(*Argument(given, 1, VT_BYREF | VT_I4).plVal) + " " +
                            Narrow(*Argument(given, 2, VT_BYREF | VT_BSTR).pbstrVal));
            break;
        case 8:
            heard.push_back("Count");
            break;
        default:
            heard.push_back("event " + std::to_string(id));
    }
    if (on_event) on_event(id);
    return answer;
}

std::vector<std::string> ServerEvents::Of(const std::string& name) const {
    std::vector<std::string> found;
    for (const auto& line : heard) {
        if (line == name) found.emplace_back();
        if (line.starts_with(name + " ")) found.push_back(line.substr(name.size() + 1));
    }
    return found;
}

std::vector<Announcement> ServerEvents::Announced(const std::string& state) const {
    std::vector<Announcement> found;
    std::copy_if(announcements.begin(), announcements.end(), std::back_inserter(found),
                 [&](const auto& announcement) { return announcement.state == state; });
    return found;
}

void ServerEvents::Forget() {
    heard.clear();
    announcements.clear();
}

}  // namespace kq
