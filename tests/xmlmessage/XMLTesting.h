// Words that the tests of message and web data texts share.
#pragma once

#include <functional>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/XMLMessage.h>

namespace kq::testing {

inline std::string Repeated(std::string_view piece, std::size_t times) {
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

// `inner` inside <a> elements, `times` of them.
inline std::string Nested(std::size_t times, std::string_view inner = {}) {
    return Repeated("<a>", times) + std::string(inner) + Repeated("</a>", times);
}

// The error that `action` raises; fails the test when it raises none.
inline Error ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was raised";
    return Error(0, "", "");
}

inline void ExpectError(RuntimeError expected, const std::function<void()>& action) {
    EXPECT_EQ(ErrorOf(action).Number(), NumberOf(expected));
}

inline void ExpectInvalidCall(const std::function<void()>& action) {
    ExpectError(RuntimeError::InvalidProcedureCall, action);
}

// Texts that XML can carry, with everything in them that needs care. The seed is fixed, so a failure repeats.
class RandomTexts {
 public:
    std::string Next() {
        static constexpr std::string_view pieces[] = {"&",
                                                      "<",
                                                      ">",
                                                      "\"",
                                                      "'",
                                                      "\r",
                                                      "\n",
                                                      "\t",
                                                      "\r\n",
                                                      " ",
                                                      "]]>",
                                                      "&amp;",
                                                      "<!--",
                                                      "-->",
                                                      "\xC3\xA9",
                                                      "\xE2\x82\xAC",
                                                      "\xF0\x9F\x98\x80",
                                                      "\xEE\x80\x80",
                                                      "a",
                                                      "Z",
                                                      "0",
                                                      "<![CDATA[",
                                                      "&#0;",
                                                      "\x7F",
                                                      "\xC2\x85",
                                                      "\xE2\x80\xA8",
                                                      "\xEF\xBF\xBD"};
        std::string text;
        for (auto count = Below(8); count > 0; --count)
            text += pieces[Below(std::size(pieces))];
        return text;
    }
    std::size_t Below(std::size_t limit) { return engine_() % limit; }

 private:
    std::mt19937 engine_{20240229};
};

}  // namespace kq::testing
