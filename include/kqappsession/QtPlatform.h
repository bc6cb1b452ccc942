// For programs with windows on Qt 6: link kqappsession::kqappsession-qt (pkg-config: kqappsession-qt).
//
//   QApplication application(argc, argv);
//   kq::KQAppSessClient client(kq::MakeQtPlatform());
//   client.SystemLogin(true, login);   // asks the user through dialogs
//
// Dialogs that ask are modal for all of the program's windows and come above its active one. While one is
// open, the program's windows go on drawing, and its connections, timers and sockets are served. The window
// that is shown while a procedure waits for a server is not modal: the program's windows take input in the
// meantime. Disable what started the procedure until it returns.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>

namespace kq {

class Icon;

// The bundle of this machine with an event loop on Qt's own and with dialogs. The QApplication must outlive
// the bundle and all objects that use it. Whether QApplication::exec runs makes no difference. `language` as
// for MakePlatform, with its error; the buttons of message boxes are in that language too. Raises
// RuntimeError::InvalidProcedureCall when there is no QApplication yet, and on another thread than its own.
KQ_EXPORT PlatformPtr MakeQtPlatform(std::optional<std::int32_t> language = {});

// A picture for the dialogs' title bars from a file that Qt can read. Null when it cannot.
// Raises RuntimeError::InvalidProcedureCall when there is no QApplication yet.
KQ_EXPORT std::shared_ptr<const Icon> MakeQtIcon(const std::string& path);

}  // namespace kq
