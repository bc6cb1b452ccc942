// The keys of the client's settings file, as one list that makes what reads and writes them and the table in
// docs/settings.md.
#pragma once

#include <cstdint>
#include <string>

#include "base/Convert.h"

namespace kq::setting {

// How a value is kept as text. Read raises the errors of the conversions in base/Convert.h.

struct Text {
    using Value = std::string;
    static constexpr const char* kName = "text";
    static Value Read(const std::string& text) { return text; }
    static std::string Write(const Value& value) { return value; }
};

struct Number {
    using Value = std::int32_t;
    static constexpr const char* kName = "number; what follows it is ignored";
    static Value Read(const std::string& text) { return ValLong(text); }
    static std::string Write(Value value) { return TextOf(value); }
};

struct WholeNumber : Number {
    static constexpr const char* kName = "number and nothing else";
    static Value Read(const std::string& text) { return TextToLong(text); }
};

struct TrueFalse {
    using Value = bool;
    static constexpr const char* kName = "`True` or `False`";
    static Value Read(const std::string& text) { return TextToBoolean(text); }
    static std::string Write(Value value) { return TextOf(value); }
};

struct OneZero : TrueFalse {
    static constexpr const char* kName = "`1` or `0`";
    static std::string Write(Value value) { return value ? "1" : "0"; }
};

// X(name, key, form, default, what the value is). The default is the text that a missing or empty value reads
// as. A key that has several rows is read differently by different readers.
#define KQ_SETTINGS(X)                                                                                      \
    X(Address, "Address", Text, "", "host name or address of the login server")                             \
    X(Port, "Port", Number, "", "port of the login server; 0: none")                                        \
    X(TimeOut, "TimeOut", Number, "10000",                                                                  \
      "milliseconds that a connection or a reply may take: for a login, and where the user changes it")     \
    X(TimeOutIfAny, "TimeOut", Number, "", "the same in the server dialog that a login dialog opens")       \
    X(RequiredTimeOut, "TimeOut", WholeNumber, "",                                                          \
      "the same for an upload of profiles and for `SetSystemLoginState`, which fail without it")            \
    X(UseASServerForLogin, "UseASServerForLogin", OneZero, "1",                                             \
      "whether the login goes by way of the application server")                                            \
    X(LoginID, "LoginID", Text, "", "the login id that was typed last")                                     \
    X(ShowDetails, "ShowDetails", TrueFalse, "False", "whether the lower part of the login dialog is open") \
    X(AskForProfile, "AskForProfile", TrueFalse, "False",                                                   \
      "whether the user chooses a profile at every login")                                                  \
    X(LastDownloadedClient, "LastDownloadedClient", Text, "",                                               \
      "path of the newer client that was downloaded; the next login deletes the file")                      \
    X(TraceFile, "TraceFile", Text, "", "path of the file to which each step of a login is added as a line")

template <class Form>
struct Row {
    const char* key;
    const char* default_text;
};

#define KQ_X(name, key, form, default_text, what) inline constexpr Row<form> name{key, default_text};
KQ_SETTINGS(KQ_X)
#undef KQ_X

}  // namespace kq::setting
