// For programs with windows of Qt 6: link kqappsession::kqappsession-qt (pkg-config: kqappsession-qt).
//
//   QApplication application(argc, argv);
//   kq::KQAppSessClient client(kq::MakeQtPlatform());
//   client.SystemLogin(true, login);   // asks the user through dialogs
//
// Dialogs that ask are modal for all of the program's windows and appear above its active window. While one
// is open, the program's windows are repainted, and its connections, timers and sockets are served. The
// window that is shown while a procedure waits for a server is not modal: the program's windows accept input
// in the meantime. Disable whatever started the procedure until it returns.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>

namespace kq {

class Icon;

// A platform with dialogs of Qt and an event loop on Qt's own. It works whether or not QApplication::exec is
// running. The QApplication must outlive the platform and all objects that use it. `language`: as for
// MakePlatform, with the same error; the buttons of message boxes use that language too. Raises
// RuntimeError::InvalidProcedureCall when there is no QApplication yet, and on another thread than the
// QApplication's.
KQ_EXPORT PlatformPtr MakeQtPlatform(std::optional<std::int32_t> language = {});

// An icon for the dialogs' title bars from an image file (SystemLoginArguments::AppIcon). Null if Qt cannot
// read the file. Raises RuntimeError::InvalidProcedureCall when there is no QApplication yet.
KQ_EXPORT std::shared_ptr<const Icon> MakeQtIcon(const std::string& path);

}  // namespace kq
