#include <QApplication>
#include <QThread>

#include <kqappsession/Error.h>
#include <kqappsession/QtPlatform.h>

#include "forms/qt/QtDialogHost.h"
#include "forms/qt/QtEventLoop.h"
#include "forms/qt/QtIcon.h"
#include "forms/qt/QtText.h"
#include "platform/Locale.h"
#include "platform/Machine.h"

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
    Platform::Machine machine = MakePlatform(MakeQtEventLoop(), language)->Parts();
    machine.dialogs = MakeQtDialogHost(machine.loop, machine.locale->UserLocaleId());
    return MakeBundle(std::move(machine));
}

std::shared_ptr<const Icon> MakeQtIcon(const std::string& path) {
    RequireApplication();
    const QIcon icon(ToQt(path));
    return icon.availableSizes().isEmpty() ? nullptr : std::make_shared<QtIcon>(icon);
}

}  // namespace kq
