// What a screen reader is told: compared with tests/golden/accessible, one file for each window. A test run
// with KQ_UPDATE_GOLDEN=1 writes them anew.
#include <QAccessible>
#include <QLineEdit>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "gui/AccessibleTree.h"
#include "gui/Scenes.h"

namespace kq {
namespace {

std::string GoldenTree(const std::string& scene, const std::string& tree) {
    const std::string path = KQ_SOURCE_DIR "/tests/golden/accessible/" + scene + ".txt";
    if (std::getenv("KQ_UPDATE_GOLDEN")) std::ofstream(path) << tree;
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class AccessibleTrees : public testing::TestWithParam<std::size_t> {};

TEST_P(AccessibleTrees, AreAsAgreed) {
    Stage stage;
    const Scene& scene = Scenes().at(GetParam());
    scene.show(stage, [&](QWidget& window) {
        const std::string tree = AccessibleTree(window);
        EXPECT_EQ(tree, GoldenTree(scene.name, tree));
    });
}

TEST_P(AccessibleTrees, NameEveryControlThatTakesTheFocus) {
    Stage stage;
    Scenes().at(GetParam()).show(stage, [](QWidget& window) {
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            QAccessibleInterface* const part = QAccessible::queryAccessibleInterface(widget);
            if (!part || !widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
            EXPECT_NE(part->text(QAccessible::Name), "") << widget->objectName().toStdString();
        }
    });
}

INSTANTIATE_TEST_SUITE_P(OfEveryWindow, AccessibleTrees, testing::Range(std::size_t{0}, Scenes().size()),
                         [](const testing::TestParamInfo<std::size_t>& which) {
                             std::string name = Scenes().at(which.param).name;
                             std::erase(name, '-');
                             return name;
                         });

TEST(MaskedBox, TellsAScreenReaderNothingOfItsText) {
    Stage stage;
    const auto& login = Scenes().at(1);
    login.show(stage, [](QWidget& window) {
        auto& box = In<QLineEdit>(window, "txtPassword");
        auto& plain = In<QLineEdit>(window, "txtLoginID");
        box.insert("Swordfish");
        plain.setText("Carla");
        EXPECT_NE(AccessibleTree(window).find("Carla"), std::string::npos);
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&plain)->textInterface()->text(0, 5), "Carla");
        QAccessibleInterface* const part = QAccessible::queryAccessibleInterface(&box);
        EXPECT_EQ(AccessibleTree(window).find("Swordfish"), std::string::npos);
        EXPECT_EQ(part->textInterface()->text(0, 9), "");
        EXPECT_EQ(box.displayText(), "*********");
    });
}

}  // namespace
}  // namespace kq
