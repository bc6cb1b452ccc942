// What every window must hold to, in every language and however large the user has set the writing.
#include <QApplication>
#include <QDialogButtonBox>
#include <QFont>
#include <QProxyStyle>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/Measures.h"
#include "gui/Scenes.h"

namespace kq {
namespace {

using testing::IsEmpty;

constexpr int kLargest = 289;  // percent of 9 points: 26 points, which still fit on a screen of 1280 by 720

using LanguageAndScale = std::tuple<std::int32_t, int>;

class Windows : public testing::TestWithParam<LanguageAndScale> {
 protected:
    Windows() {
        QFont larger = font_;
        larger.setPointSizeF(font_.pointSizeF() * std::get<1>(GetParam()) / 100);
        QApplication::setFont(larger);
    }
    ~Windows() override { QApplication::setFont(font_); }

    void VisitAll(const Stage::Act& visit) {
        Stage stage(std::get<0>(GetParam()));
        for (const auto& scene : Scenes()) {
            SCOPED_TRACE(scene.name);
            scene.show(stage, visit);
        }
    }

 private:
    const QFont font_ = QApplication::font();
};

TEST_P(Windows, ShowEveryTextInFull) {
    VisitAll([](QWidget& window) { EXPECT_THAT(LayoutFaults(window), IsEmpty()); });
}

TEST_P(Windows, HaveOkAndCancelOfOneSize) {
    VisitAll([](QWidget& window) {
        const auto* const ok = window.findChild<QPushButton*>("cmdOK");
        const auto* const cancel = window.findChild<QPushButton*>("cmdCancel");
        if (ok && cancel) {
            EXPECT_EQ(ok->size(), cancel->size());
        }
    });
}

TEST_P(Windows, LeaveTheSameSpaceBelowTheirButtonsInEveryLanguage) {
    const QFontMetrics metrics(QApplication::font());
    VisitAll([&](QWidget& window) {
        const auto* const ok = window.findChild<QPushButton*>("cmdOK");
        if (!ok || ok->parentWidget() != &window) return;
        EXPECT_LE(window.height() - ok->geometry().bottom(), metrics.height() + 1);
    });
}

TEST_P(Windows, HaveEachAccessKeyOnce) {
    VisitAll([](QWidget& window) { EXPECT_THAT(DoubleAccessKeys(window), IsEmpty()); });
}

TEST_P(Windows, AreReadInTheOrderOfTheirTabs) {
    VisitAll([](QWidget& window) { EXPECT_THAT(TabOrderFaults(window), IsEmpty()); });
}

TEST(WindowsInTheLanguageThatNobodySpeaks, TakeEveryTextFromTheTable) {
    Stage stage(kPseudoLanguage);
    for (const auto& scene : Scenes()) {
        SCOPED_TRACE(scene.name);
        scene.show(stage, [&](QWidget& window) {
            EXPECT_THAT(UntranslatedTexts(window, {"KQAppSessionLib", "Main"}), IsEmpty());
        });
    }
}

TEST(LoginWindowOnTheScreen, IsAsHighAsItIsAskedToBe) {
    Stage stage;
    const auto twips = [](const QWidget& window, int height) {
        return static_cast<int>(std::lround(height / 1440.0 * window.logicalDpiY()));
    };
    for (const auto& [name, height] :
         {std::pair("login-more", 3645), {"login-more-without-profiles", 3360}}) {
        const auto scene = std::ranges::find(Scenes(), name, &Scene::name);
        scene->show(stage, [&, height = height](QWidget& window) {
            ASSERT_NE(window.frameGeometry(), window.geometry());
            EXPECT_EQ(window.frameGeometry().height(), twips(window, height));
        });
    }
}

TEST(LoginWindowOnTheScreen, EndsWhereItsLowerPartBeginsAndKeepsItsWidth) {
    Stage stage;
    const auto login = std::ranges::find(Scenes(), "login", &Scene::name);
    login->show(stage, [&](QWidget& window) {
        auto& more = In<QPushButton>(window, "cmdShowHide");
        const QSize closed = window.size();
        more.click();
        EXPECT_TRUE(In(window, "txtNewPassword").isVisible());
        EXPECT_EQ(window.width(), closed.width());
        EXPECT_EQ(In(window, "Picture2").y(), closed.height());
        more.click();
        EXPECT_EQ(window.size(), closed);
    });
}

// The order of buttons of a desktop, by the toolkit's number.
class ButtonsOfADesktop : public QProxyStyle {
 public:
    explicit ButtonsOfADesktop(int order) : order_(order) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        return hint == SH_DialogButtonLayout ? order_ : QProxyStyle::styleHint(hint, option, widget, result);
    }

 private:
    int order_;
};

TEST(WindowsOnADesktopThatEndsWithOk, HaveTheirButtonsAndTabsInThatOrder) {
    const QString usual = QApplication::style()->objectName();
    QApplication::setStyle(new ButtonsOfADesktop(QDialogButtonBox::GnomeLayout));
    Stage stage;
    for (const auto& scene : Scenes()) {
        SCOPED_TRACE(scene.name);
        scene.show(stage, [&](QWidget& window) {
            EXPECT_THAT(TabOrderFaults(window), IsEmpty());
            EXPECT_THAT(LayoutFaults(window), IsEmpty());
            const auto* const ok = window.findChild<QPushButton*>("cmdOK");
            const auto* const cancel = window.findChild<QPushButton*>("cmdCancel");
            if (!ok || !cancel) return;
            EXPECT_GT(ok->x(), cancel->x());
        });
    }
    QApplication::setStyle(usual);
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguageAtEveryScale, Windows,
                         testing::Combine(testing::ValuesIn(kLanguages),
                                          testing::Values(100, 150, 200, kLargest)),
                         [](const testing::TestParamInfo<LanguageAndScale>& which) {
                             return std::to_string(std::get<0>(which.param)) + "_" +
                                    std::to_string(std::get<1>(which.param));
                         });

}  // namespace
}  // namespace kq
