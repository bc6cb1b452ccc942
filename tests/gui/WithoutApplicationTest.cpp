// What a program gets that asks for the dialogs on Qt before it has a QApplication.
#include <functional>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/QtPlatform.h>

namespace kq {
namespace {

void ExpectRefused(const std::function<void()>& call) {
    try {
        call();
        ADD_FAILURE() << "nothing was raised";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), NumberOf(RuntimeError::InvalidProcedureCall));
        EXPECT_EQ(error.Description(), "There is no QApplication yet");
    }
}

TEST(WithoutAnApplication, NoBundleIsMade) {
    ExpectRefused([] { MakeQtPlatform(); });
}

TEST(WithoutAnApplication, NoPictureIsLoaded) {
    ExpectRefused([] { MakeQtIcon(KQ_SOURCE_DIR "/docs/images/server.png"); });
}

}  // namespace
}  // namespace kq
