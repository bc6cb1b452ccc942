// Thrown by a fake that is used in a way the test did not provide for: a mistake in the test or in what it
// tests, never a condition that the library is meant to handle. FakeEventLoop lets it through to the test.
#pragma once

#include <stdexcept>

namespace kq {

struct FakeFailure : std::logic_error {
    using std::logic_error::logic_error;
};

}  // namespace kq
