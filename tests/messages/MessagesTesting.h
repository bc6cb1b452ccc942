// What the tests of this folder share: a machine that speaks the real English texts, and errors as values.
#pragma once

#include <memory>
#include <string>

#include <kqappsession/Error.h>

#include "messages/Texts.h"
#include "platform/Machine.h"
#include "platform/posix/PosixStringTable.h"
#include "support/FakePlatform.h"

namespace kq {

struct EnglishMachine {
    explicit EnglishMachine(FakePlatform::Face face = FakePlatform::Face::WithDialogs) : fakes(face) {
        Platform::Machine parts = fakes.platform->Parts();
        parts.strings = MakePosixStringTable(*fakes.locale);
        platform = MakeBundle(parts);
    }

    FakePlatform fakes;
    PlatformPtr platform;
};

// What `call` raises; number 0 and no texts when it raises nothing.
template <class F>
Error ErrorOf(F call) {
    try {
        call();
    } catch (const Error& error) {
        return error;
    }
    return {0, "", ""};
}

}  // namespace kq
