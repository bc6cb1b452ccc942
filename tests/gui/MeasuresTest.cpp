// The rulers themselves: each finds the fault that it is for.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/Measures.h"

namespace kq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Rulers : public testing::Test {
 protected:
    Rulers() {
        window_.setObjectName("window");
        window_.setWindowTitle("[Ŵîñðöŵ]");
        label_.setObjectName("label");
        button_.setObjectName("button");
        box_.setObjectName("box");
        label_.setBuddy(&box_);
        layout_.addWidget(&label_);
        layout_.addWidget(&box_);
        layout_.addWidget(&button_);
        window_.show();
    }
    // From here on widgets stay where they are put.
    void LetLoose() {
        layout_.activate();
        layout_.setEnabled(false);
    }

    QWidget window_;
    QVBoxLayout layout_{&window_};
    QLabel label_{"[&Ñåɱé]", &window_};
    QLineEdit box_{"Ann", &window_};
    QPushButton button_{"[&Šŵîɱ]", &window_};
};

TEST_F(Rulers, FindNothingWhereNothingIsWrong) {
    EXPECT_THAT(LayoutFaults(window_), IsEmpty());
    EXPECT_THAT(DoubleAccessKeys(window_), IsEmpty());
    EXPECT_THAT(TabOrderFaults(window_), IsEmpty());
    EXPECT_THAT(UntranslatedTexts(window_, {}), IsEmpty());
}

TEST_F(Rulers, FindATextThatIsCutOff) {
    LetLoose();
    label_.resize(label_.width(), label_.height() / 2);
    button_.resize(10, button_.height());
    box_.setText(QString(100, 'm'));
    EXPECT_THAT(LayoutFaults(window_), ElementsAre("label is clipped", "label is too small", "box is clipped",
                                                   "button is clipped", "button is too small"));
}

TEST_F(Rulers, FindAWrappedTextWhoseLastLineIsMissing) {
    label_.setWordWrap(true);
    label_.setText("one two three four five");
    label_.setFixedSize(label_.fontMetrics().horizontalAdvance("three"), label_.height());
    layout_.activate();
    EXPECT_THAT(LayoutFaults(window_), ElementsAre("label is clipped", "label is too small"));
}

TEST_F(Rulers, FindWhatLiesOnSomethingElseOrSticksOut) {
    LetLoose();
    box_.move(label_.pos());
    button_.move(window_.width() - 5, button_.y());
    EXPECT_THAT(LayoutFaults(window_), ElementsAre("box lies on label", "button sticks out"));
}

TEST_F(Rulers, FindATitleThatIsCutOff) {
    window_.setWindowTitle(QString(window_.width(), '.'));
    EXPECT_THAT(LayoutFaults(window_), ElementsAre("the title is clipped"));
}

TEST_F(Rulers, FindAKeyThatStandsForTwoThings) {
    button_.setText("&Ñöðé");
    EXPECT_THAT(DoubleAccessKeys(window_), Contains("button and label share Alt+Ñ"));
}

TEST_F(Rulers, FindATabThatGoesUp) {
    LetLoose();
    button_.move(0, 0);
    EXPECT_THAT(TabOrderFaults(window_), ElementsAre("button comes after box"));
}

TEST_F(Rulers, FindATextThatIsNotTranslatedOrHasNoEnd) {
    button_.setText("&Swim");
    label_.setText("[Ñåɱé");
    EXPECT_THAT(UntranslatedTexts(window_, {}), ElementsAre("[Ñåɱé", "Swim"));
    EXPECT_THAT(UntranslatedTexts(window_, {"Swim"}), Contains("Swim"));
}

}  // namespace
}  // namespace kq
