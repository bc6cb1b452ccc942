// The replies of a good login server and a good application server.
#include "support/FakeZeb.h"

namespace kq {

namespace {

XMLMessage SessionRecord() {
    XMLMessage record("SessionInfo", "1");
    record.SetField("LoginID", "ann");
    record.SetField("UserUID", "55");
    record.SetField("FirstName", "Ann");
    record.SetField("LastName", "Lee");
    return record;
}

std::string TwoProfiles() {
    Profiles profiles;
    profiles.Add(std::make_shared<Profile>("Main"));
    profiles.Add(std::make_shared<Profile>("Second"));
    profiles.SetLastUsed("Main");
    return profiles.ToXML();
}

XMLMessage Changed(XMLMessage message, const std::string& field, const std::string& value) {
    message.SetField(field, value);
    return message;
}

}  // namespace

FakeZeb::FakeZeb(FakePlatform& machine) : ScriptedPeer(machine, kAddress, kPort) {
    On(kValidate, Answer(Validation()));
    On(kLogin, Answer(Login()));
    On(kUpload, Answer(XMLMessage("ASProfilesUpdateResponse", "1")));
}

XMLMessage FakeZeb::Validation() {
    XMLMessage reply("ASValidateClientResponse", "1");
    reply.SetField("ErrorNumber", "0");
    reply.SetField("ClientAvailable", "False");
    reply.SetField("InterfaceAvailable", "True");
    return reply;
}

XMLMessage FakeZeb::ValidationWith(const std::string& field, const std::string& value) {
    return Changed(Validation(), field, value);
}

XMLMessage FakeZeb::Login() {
    TranslationTable table;
    table.Set("greeting", "Hello");
    XMLMessage reply("ASLoginResponse", "1");
    reply.SetField("ErrorNumber", "0");
    reply.SetField("Port", std::to_string(FakeAppServer::kPort));
    reply.SetXMLField("TranslationTable", table.ToXML());
    reply.SetMessageField("SessionInfo", SessionRecord());
    reply.SetField("SessionID", "S17");
    reply.SetXMLField("Profiles", TwoProfiles());
    return reply;
}

XMLMessage FakeZeb::LoginWith(const std::string& field, const std::string& value) {
    return Changed(Login(), field, value);
}

XMLMessage FakeZeb::LoginWithout(const std::string& field) {
    XMLMessage reply = Login();
    reply.RemoveField(field);
    return reply;
}

XMLMessage FakeZeb::LoginWithProfiles(const Profiles& profiles) {
    XMLMessage reply = Login();
    reply.SetXMLField("Profiles", profiles.ToXML());
    return reply;
}

XMLMessage FakeZeb::Refusal(const std::string& type, const std::string& number, const std::string& desc,
                            const std::string& param) {
    XMLMessage reply(type, "1");
    reply.SetField("ErrorNumber", number);
    reply.SetField("ErrorDesc", desc);
    reply.SetField("ErrorParam", param);
    return reply;
}

void FakeZeb::RefusesLogin(const std::string& number, const std::string& desc, const std::string& param) {
    Once(kLogin, Answer(Refusal("ASLoginResponse", number, desc, param)));
}

FakeAppServer::FakeAppServer(FakePlatform& machine) : ScriptedPeer(machine, FakeZeb::kAddress, kPort) {
    On(kRegister, Answer(Registration()));
}

XMLMessage FakeAppServer::Registration(const std::string& error_num, const std::string& error_desc) {
    XMLMessage reply("ASRegisterResponse", "1");
    reply.SetField("ErrorNum", error_num);
    if (!error_desc.empty()) reply.SetField("ErrorDesc", error_desc);
    return reply;
}

}  // namespace kq
