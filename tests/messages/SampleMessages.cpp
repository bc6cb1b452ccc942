// Values by the field's name; a field without one here is filled with its own name.
#include "messages/SampleMessages.h"

#include <map>

#include <kqappsession/WebData.h>

namespace kq {
namespace {

std::string ValueOf(std::string_view name) {
    static const std::map<std::string_view, std::string> kValues = {
        {"Address", "192.0.2.10"},
        {"AppID", "Demo"},
        {"BUID", "7"},
        {"BUIDUnionList", "7|9"},
        {"BroadcastInterval", "120"},
        {"ClientAvailable", "True"},
        {"ClientPath", "\\\\HOST\\ClientInstall_Demo\\Setup.exe"},
        {"ClientVersion", "5.2.3"},
        {"DST", "1"},
        {"DaysToExpirePassword", "3"},
        {"EnterpriseID", "ACME"},
        {"ErrorCode", "7712"},
        {"ErrorDesc", "Unknown user or password"},
        {"ErrorDescription", "No such session"},
        {"ErrorNum", "-2147218933"},
        {"ErrorNumber", "7721"},
        {"ErrorParam", "ZEBError-132"},
        {"FirstName", "Ann"},
        {"InfoState", "C"},
        {"InterfaceAvailable", "True"},
        {"InterfaceVersion", "2.0"},
        {"Language", "1033"},
        {"LastName", "Muñoz"},
        {"LocaleID", "1033"},
        {"LoginID", "ann"},
        {"NewPassword", "new & <better>"},
        {"OldPassword", "old password"},
        {"OperatorID", "55"},
        {"Password", "secret"},
        {"Port", "7000"},
        {"PrivilegeList", "Read|Write"},
        {"RestrictIP", "192.0.2.1"},
        {"RestrictPort", "7000"},
        {"ReturnMsgType", "AS"},
        {"ReturnSubType", "HOST-4711"},
        {"SessionID", "S17"},
        {"TZ", "America/Lima"},
        {"TransID", "S17|42"},
        {"UserUID", "55"}};
    const auto value = kValues.find(name);
    return value == kValues.end() ? std::string(name) : value->second;
}

std::string WebDataOf(std::string_view name) {
    if (name == "Profiles") {
        Profiles profiles;
        profiles.Add(std::make_shared<Profile>("Main"));
        return profiles.ToXML();
    }
    TranslationTable table;
    table.Set("greeting", "Hello");
    return table.ToXML();
}

void Put(field::Text, std::string_view name, std::string& value) {
    value = ValueOf(name);
}
void Put(field::XML, std::string_view name, std::string& value) {
    value = WebDataOf(name);
}
void Put(field::WantedData, std::string_view, std::string&) {}
void Put(field::Password, std::string_view name, Secret& value) {
    value = Secret(ValueOf(name));
}
void Put(field::Texts, std::string_view, std::vector<std::string>& values) {
    values = {"1.0", "2.0"};
}
void Put(field::SessionIDList, std::string_view, std::optional<std::vector<std::string>>& ids) {
    ids = {"S17", "S18"};
}
void Put(field::Message, std::string_view, std::string& value) {
    value = Sample<SessionInfo>().Build().ToXML();
}
template <class T>
void Put(field::Element<T>, std::string_view, std::optional<T>& element) {
    element = Sample<T>();
}

// A registration is confirmed or refused, never both.
template <class T>
void Adjust(T&) {}
void Adjust(ASRegistrationResponse& sample) {
    sample.ErrorResponse.reset();
}

}  // namespace

#define KQ_PUT(kind, name, meaning) Put(field::kind{}, #name, sample.name);
#define KQ_FILL(channel, type, purpose, puts) \
    void FillSample(type& sample) {           \
        puts Adjust(sample);                  \
    }
KQ_AS_MESSAGES(KQ_FILL, KQ_PUT)
#undef KQ_FILL
#undef KQ_PUT

}  // namespace kq
