// The session record's password is never read here. Control characters are removed from the servers' texts,
// so that no server controls the terminal.
#include "tools/kqlogin/LoginReport.h"

#include <ostream>

#include "base/Convert.h"
#include "base/ErrorNumber.h"
#include "tools/JsonText.h"
#include "tools/program/OneLine.h"

namespace kq {
namespace {

std::vector<std::string> ProfileNames(const KQAppSessClient& client) {
    std::vector<std::string> names;
    const auto profiles = client.Profiles();
    if (profiles) {
        for (const auto& profile : *profiles)
            names.push_back(profile->Name());
    }
    return names;
}

JsonObject SessionJson(const KQAppSessionInfo& session) {
    JsonObject json;
    json.Add("SessionID", session.SessionID());
    json.Add("LoginID", session.LoginID());
    json.Add("FirstName", session.FirstName());
    json.Add("LastName", session.LastName());
    json.Add("UserUID", session.Export()->Field("UserUID"));
    json.Add("Language", session.Language());
    return json;
}

JsonObject StepJson(const LoginStep& step) {
    std::vector<std::string> errors;
    for (const std::int32_t number : step.Errors)
        errors.push_back(ErrorNumberText(number));
    JsonObject json;
    json.Add("Procedure", step.Procedure);
    json.Add("State", step.State);
    json.Add("Role", step.Role);
    json.Add("Milliseconds", step.Milliseconds);
    json.Add("Outcome", step.Outcome);
    json.Add("Errors", errors);
    return json;
}

// What is the same in the objects of all results.
JsonObject ResultJson(const char* result, const KQAppSessClient& client) {
    JsonObject json;
    json.Add("result", result);
    json.Add("LoginState", NameOf(client.LoginState()));
    const auto session = client.SessionInfo();
    if (session->IsInitialized()) {
        json.Add("Session", SessionJson(*session));
        json.Add("AppServerAddress", client.AppServerAddress());
        json.Add("AppServerPort", client.AppServerPort());
        json.Add("Profiles", ProfileNames(client));
    }
    if (const auto profile = client.CurrentProfile()) json.Add("CurrentProfile", profile->Name());
    return json;
}

}  // namespace

std::string ErrorLine(const Error& error) {
    return ErrorNumberText(error.Number()) + " " + OneLine(error.Description());
}

void LoginReport::Line(const std::string& text) {
    if (!json_) output_ << text << '\n' << std::flush;
}

void LoginReport::Step(const LoginStep& step) {
    errors_ << (json_ ? StepJson(step).Text() : LineOf(step)) << '\n' << std::flush;
}

void LoginReport::LoggedIn(const KQAppSessClient& client) {
    const auto session = client.SessionInfo();
    Line(std::string("LoginState ") + NameOf(client.LoginState()));
    Line("SessionID " + OneLine(session->SessionID()));
    Line("LoginID " + OneLine(session->LoginID()));
    Line("Name " + OneLine(Trim(session->FirstName() + " " + session->LastName())));
    Line("UserUID " + OneLine(session->Export()->Field("UserUID")));
    Line("AppServer " + OneLine(AddressAndPort(client.AppServerAddress(), client.AppServerPort())));
    for (const auto& name : ProfileNames(client))
        Line("Profile " + OneLine(name));
    if (const auto profile = client.CurrentProfile()) Line("CurrentProfile " + OneLine(profile->Name()));
}

void LoginReport::Registered(const KQAppSessClient& client) {
    Line(std::string("LoginState ") + NameOf(client.LoginState()));
}

void LoginReport::Sent(const std::string& type, std::size_t bytes) {
    Line("Sent " + type + " bytes=" + std::to_string(bytes));
}

void LoginReport::Succeeded(const KQAppSessClient& client) {
    if (json_) output_ << ResultJson("ok", client).Text() << '\n' << std::flush;
}

void LoginReport::Failed(const KQAppSessClient& client, const Error& error) {
    if (json_) {
        JsonObject details;
        details.Add("Number", ErrorNumberText(error.Number()));
        details.Add("Source", error.Source());
        details.Add("Description", error.Description());
        details.Add("Cause", NameOf(error.Cause()));
        output_ << ResultJson("error", client).Add("Error", details).Text() << '\n' << std::flush;
    }
    errors_ << "kqlogin: " << ErrorLine(error) << '\n' << std::flush;
}

void LoginReport::GivenUp(const KQAppSessClient& client) {
    if (json_) output_ << ResultJson("given up", client).Text() << '\n' << std::flush;
    errors_ << "kqlogin: given up by the user\n" << std::flush;
}

void LoginReport::WaitEnded(bool by_server) {
    Line(by_server ? "Disconnected by the application server" : "Disconnected");
}

}  // namespace kq
