#include <QApplication>
#include <QThread>

#include <kqappsession/Error.h>
#include <kqappsession/QtPlatform.h>

#include "platform/Locale.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtIcon.h"
#include "platform/qt/QtText.h"

namespace kq {
namespace {

void RequireApplication() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        Raise(RuntimeError::InvalidProcedureCall, "There is no QApplication yet");
}

}  // namespace

PlatformPtr MakeQtPlatform(std::optional<std::int32_t> language) {
    RequireApplication();
    if (QCoreApplication::instance()->thread() != QThread::currentThread())
        Raise(RuntimeError::InvalidProcedureCall,
              "MakeQtPlatform must be called on the thread of the QApplication");
    auto bundle = std::make_shared<Platform>(*MakePlatform(MakeQtEventLoop(), language));
    bundle->dialogs = MakeQtDialogHost(bundle->loop, bundle->locale->UserLocaleId());
    return bundle;
}

std::shared_ptr<const Icon> MakeQtIcon(const std::string& path) {
    RequireApplication();
    const QIcon icon(ToQt(path));
    return icon.availableSizes().isEmpty() ? nullptr : std::make_shared<QtIcon>(icon);
}

}  // namespace kq
