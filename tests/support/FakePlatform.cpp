// Puts the fakes together.
#include "support/FakePlatform.h"

#include "platform/Machine.h"

namespace kq {

FakePlatform::FakePlatform(Face face)
    : loop(std::make_shared<FakeEventLoop>()),
      clock(std::make_shared<FakeClock>(loop)),
      network(std::make_shared<FakeNetwork>(loop)),
      resolver(std::make_shared<FakeResolver>(loop)),
      folders(std::make_shared<FakeFolders>()),
      profile_file(std::make_shared<FakeProfileFile>()),
      locale(std::make_shared<FakeLocale>()),
      strings(std::make_shared<FakeStrings>()),
      process(std::make_shared<FakeProcess>()),
      file_share(std::make_shared<FakeFileShare>()),
      version_resource(std::make_shared<FakeVersionResource>()),
      crypto(std::make_shared<FakeCrypto>()),
      shortcuts(std::make_shared<FakeShortcuts>()),
      temp_files(std::make_shared<FakeTempFiles>()),
      dialogs(face == Face::WithDialogs ? std::make_shared<FakeDialogHost>(loop) : nullptr) {
    platform = MakeBundle({loop, clock, network, resolver, folders, profile_file, locale, strings, process,
                           file_share, version_resource, crypto, shortcuts, temp_files, dialogs});
}

}  // namespace kq
