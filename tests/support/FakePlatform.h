// A machine for tests: every fake, and the bundle that the library takes.
#pragma once

#include <memory>

#include <kqappsession/Platform.h>

#include "support/FakeClock.h"
#include "support/FakeDialogHost.h"
#include "support/FakeEventLoop.h"
#include "support/FakeNetwork.h"
#include "support/FakeSystem.h"

namespace kq {

struct FakePlatform {
    enum class Face { WithDialogs, None };  // None: a program that can ask nobody

    explicit FakePlatform(Face face = Face::WithDialogs);

    std::shared_ptr<FakeEventLoop> loop;
    std::shared_ptr<FakeClock> clock;
    std::shared_ptr<FakeNetwork> network;
    std::shared_ptr<FakeResolver> resolver;
    std::shared_ptr<FakeFolders> folders;
    std::shared_ptr<FakeProfileFile> profile_file;
    std::shared_ptr<FakeLocale> locale;
    std::shared_ptr<FakeStrings> strings;
    std::shared_ptr<FakeProcess> process;
    std::shared_ptr<FakeFileShare> file_share;
    std::shared_ptr<FakeVersionResource> version_resource;
    std::shared_ptr<FakeCrypto> crypto;
    std::shared_ptr<FakeShortcuts> shortcuts;
    std::shared_ptr<FakeTempFiles> temp_files;
    std::shared_ptr<FakeDialogHost> dialogs;  // null without a face
    PlatformPtr platform;
};

}  // namespace kq
