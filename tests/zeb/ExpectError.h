// What tests of the login server say about errors.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

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

}  // namespace kq::zeb
