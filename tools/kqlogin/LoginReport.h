// What kqlogin reports about a login: one line for each step, or one JSON object at the end.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessClient.h>

namespace kq {

class LoginReport {
 public:
    LoginReport(std::ostream& output, std::ostream& errors, bool json)
        : output_(output), errors_(errors), json_(json) {}

    // A step of the trace: a line, or a JSON object on a line, for standard error.
    void Step(const LoginStep& step);
    // The facts of a login, in their order.
    void LoggedIn(const KQAppSessClient& client);
    void Registered(const KQAppSessClient& client);
    void Sent(const std::string& type, std::size_t bytes);
    // Writes the JSON object, so that it can be read before a long wait.
    void Succeeded(const KQAppSessClient& client);
    void Failed(const KQAppSessClient& client, const Error& error);
    void GivenUp(const KQAppSessClient& client);
    void WaitEnded(bool by_server);

 private:
    // Each text is a separate line and is written immediately.
    void Line(const std::string& text);

    std::ostream& output_;
    std::ostream& errors_;
    bool json_;
};

// The line for standard error: "0x80040A06 Could not connect to login server: ...", or with the decimal
// number of a connection's error. It is one line whatever the description contains.
std::string ErrorLine(const Error& error);

}  // namespace kq
