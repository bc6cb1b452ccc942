// What kqlogin tells of a login: one line for each fact while it goes on, or one JSON object in the end.
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

    // The steps of a login, in their order.
    void LoggedIn(const KQAppSessClient& client);
    void Registered(const KQAppSessClient& client);
    void Sent(const std::string& type, std::size_t bytes);
    // The JSON object is written here, so that it is there before a long wait.
    void Succeeded(const KQAppSessClient& client);
    void Failed(const KQAppSessClient& client, const Error& error);
    void GivenUp(const KQAppSessClient& client);
    void WaitEnded(bool by_server);

 private:
    // Everything on the two streams stands on lines of its own and is there at once.
    void Line(const std::string& text);

    std::ostream& output_;
    std::ostream& errors_;
    bool json_;
};

// The line for standard error: "0x80040A06 Could not connect to login server: ...", or the decimal number of
// a connection's error. On one line whatever the description holds.
std::string ErrorLine(const Error& error);
// 0x80040A06 for automation codes, decimal for the others.
std::string ErrorNumberText(std::int32_t number);

}  // namespace kq
