// What tests of the login server expect of calls and answers: an error, a refusal or success.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/XMLMessage.h>

#include "zeb/store/Refusal.h"

namespace kq::zeb {

// `call` raises this error: number, source and the whole description.
inline void ExpectError(const std::function<void()>& call, std::int32_t number, const std::string& source,
                        const std::string& description) {
    try {
        call();
        ADD_FAILURE() << "nothing was raised; expected was: " << description;
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), number);
        EXPECT_EQ(error.Source(), source);
        EXPECT_EQ(error.Description(), description);
    }
}

// How a request ended, as its answer says it.
struct Outcome {
    std::string number;
    std::string code;
    std::string sentence;
    bool operator==(const Outcome&) const = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* out) {
        *out << outcome.number << " [" << outcome.code << "] " << outcome.sentence;
    }
};

template <class Response>
Outcome OutcomeOf(const Response& reply) {
    std::string code;
    if constexpr (requires { reply.ErrorParam; }) code = reply.ErrorParam;
    return {reply.ErrorNumber, code, reply.ErrorDesc};
}
inline Outcome OutcomeOf(const XMLMessage& reply) {
    return {reply.Field("ErrorNumber"), reply.Field("ErrorParam"), reply.Field("ErrorDesc")};
}

// The answer, a message or what was read from it, is this refusal: number, code and sentence. `code` is what
// the refusal is about, for those that say so.
template <class Response>
void ExpectRefused(const Response& reply, Refusal refusal, const std::string& code) {
    EXPECT_EQ(OutcomeOf(reply),
              (Outcome{std::to_string(NumberOf(refusal)), code, std::string(SentenceOf(refusal))}));
}
template <class Response>
void ExpectRefused(const Response& reply, Refusal refusal) {
    ExpectRefused(reply, refusal, std::string(CodeOf(refusal)));
}

template <class Response>
void ExpectGranted(const Response& reply) {
    EXPECT_EQ(OutcomeOf(reply), (Outcome{"0", "", ""}));
}

}  // namespace kq::zeb
