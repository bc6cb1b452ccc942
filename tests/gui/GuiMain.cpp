// The program of tests with windows: a QApplication that knows nothing of the desktop it happens to run on.
#include <QApplication>
#include <QFont>
#include <iostream>
#include <string_view>

#include <gtest/gtest.h>

// Font and display libraries keep what they have loaded until the process ends.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\nleak:libfreetype\nleak:libX11\nleak:libxcb\nleak:libdbus\nleak:libglib\n";
}

namespace {

// What a display without a desktop cannot do is no finding.
void Hear(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (text.startsWith("This plugin does not support") || text.contains("XDG_RUNTIME_DIR")) return;
    std::cerr << qFormatLogMessage(type, context, text).toStdString() << "\n";
}

// Listing tests needs no display.
bool OnlyLists(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--gtest_list_tests") return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const bool only_lists = OnlyLists(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    if (only_lists) return RUN_ALL_TESTS();
    qputenv("QT_QPA_PLATFORM", KQ_QT_PLATFORM);
    qputenv("QT_QPA_PLATFORMTHEME", "none");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qInstallMessageHandler(Hear);
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QApplication::setFont(QFont("DejaVu Sans", 9));
    QApplication::setCursorFlashTime(0);  // pictures are the same whenever they are taken
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
