// Every window in every language, filled in with real keys, as a picture in the build folder:
// pictures/<language>/<scene>.png. Pictures for documents have a title bar of their own: the display of a
// test has no window manager that would draw one.
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include "gui/Scenes.h"
#include "gui/User.h"

namespace kq {
namespace {

constexpr int kTitleHeight = 30;
constexpr int kMargin = 1;

QPixmap Framed(QWidget& window) {
    const QPixmap inside = window.grab();
    const QSize size(window.width() + 2 * kMargin, window.height() + kTitleHeight + kMargin);
    QPixmap picture(size * inside.devicePixelRatio());
    picture.setDevicePixelRatio(inside.devicePixelRatio());
    picture.fill(QColor(0x6a, 0x70, 0x78));
    QPainter painter(&picture);
    const QRect title(kMargin, kMargin, window.width(), kTitleHeight - kMargin);
    painter.fillRect(title, QColor(0xd8, 0xdc, 0xe2));
    QFont bold = window.font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(QColor(0x20, 0x24, 0x28));
    const QRect cross(title.right() - 21, title.center().y() - 4, 9, 9);
    const QString caption =
        painter.fontMetrics().elidedText(window.windowTitle(), Qt::ElideRight, cross.left() - 20);
    painter.drawText(title.adjusted(10, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, caption);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x40, 0x44, 0x4a), 1.5));
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.bottomLeft(), cross.topRight());
    painter.drawPixmap(kMargin, kTitleHeight, inside);
    return picture;
}

// What is typed into which boxes of a scene's window.
using Typed = std::vector<std::pair<std::string, std::string>>;

const Typed& TypedIn(const std::string& scene) {
    static const std::map<std::string, Typed> typed{
        {"login", {{"txtLoginID", "ann"}, {"txtPassword", "Swordfish"}}},
        {"login-more", {{"txtPassword", "Swordfish"}, {"txtNewPassword", "Marlin"}}},
        {"password",
         {{"txtOldPassword", "Swordfish"}, {"txtNewPassword", "Marlin"}, {"txtConfirmPassword", "Marlin"}}},
        {"server", {{"txtAddress", "login.example.com"}, {"txtPort", "7710"}, {"txtTimeOut", "10"}}},
        {"new-profile", {{"txtName", "Sales"}}},
    };
    static const Typed none;
    const auto found = typed.find(scene);
    return found == typed.end() ? none : found->second;
}

class Pictures : public testing::TestWithParam<std::int32_t> {};

TEST_P(Pictures, AreTakenOfEveryWindow) {
    const auto folder = std::filesystem::path(KQ_BINARY_DIR) / "pictures" / std::to_string(GetParam());
    std::filesystem::create_directories(folder);
    Stage stage(GetParam());
    User user(stage);
    stage.SetClosing([&](QWidget& window) { user.ClosesByTheSystem(window); });
    for (const auto& scene : Scenes()) {
        SCOPED_TRACE(scene.name);
        const auto path = QString::fromStdString((folder / (scene.name + ".png")).string());
        scene.show(stage, [&](QWidget& window) {
            for (const auto& [box, text] : TypedIn(scene.name))
                user.Types(window, box, text);
            const QImage picture = Framed(window).toImage().convertToFormat(QImage::Format_RGB888);
            EXPECT_TRUE(picture.save(path));
        });
    }
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, Pictures, testing::ValuesIn(kLanguages),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace kq
