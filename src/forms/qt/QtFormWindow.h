// The window of one form. It exists until the toolkit has finished with it, which may be after the form has
// released it.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <optional>

#include "forms/qt/QtFormLayout.h"
#include "forms/qt/QtWidgets.h"

namespace kq {

class QtScreen;

class QtFormWindow final : public QDialog {
 public:
    QtFormWindow(Form& form, std::shared_ptr<QtScreen> screen);
    ~QtFormWindow() override;

    void Draw(const Control& control, ControlChange change);
    void Draw(FormChange change);
    void PutFocus(const Control& control);
    // The form releases the window: it is hidden immediately and deleted when nothing of it is running.
    void LetGo();

    void reject() override;

 protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

 private:
    // Reports something to the form, if it still exists.
    void Report(const std::function<void(Form&)>& event);
    void Connect(const Control& control, QWidget& widget);
    void ReportTyping(const Control& control);
    void ComeFocus(const Control& control, QWidget& widget, QFocusEvent& event);
    void ComeRelease(const Control& control, QWidget& widget, QEvent& event);
    void SelectAgain(const Control& control, QWidget* widget);
    bool ActivatesItem(const QEvent& event, const Control& control);
    const Control* ControlOf(const QObject* widget) const;
    void ShowOrHide(const Form& form);
    void DrawTexts(const Form& form);
    void DrawDrawn(const Form& form);
    void Fit(const Form& form);
    void FitIntoNewFrame();
    QSize Room() const;
    int LeastWidth() const;
    int LeastHeight(const Form& form) const;

    std::weak_ptr<Form> form_;
    std::shared_ptr<QtScreen> screen_;
    Widgets widgets_;
    std::optional<QtFormLayout> layout_;
    QWidget* owner_ = nullptr;             // compared only
    const Control* focused_ = nullptr;     // the last one that the focus came to since the window is shown
    const Control* pressed_on_ = nullptr;  // a box that got the focus by a mouse button that is still down
    QMargins frame_;                       // the system's, as it was when the window was fitted last
    int kept_width_ = 0;
    int reporting_ = 0;
    bool let_go_ = false;
};

}  // namespace kq
