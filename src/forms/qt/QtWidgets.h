// A widget for each kind of control, and what it shows.
#pragma once

#include <QLabel>
#include <QString>
#include <map>

#include "forms/Control.h"
#include "forms/Form.h"

class QLineEdit;
class QWidget;

namespace kq {

using Widgets = std::map<const Control*, QWidget*>;

// A text that asks for no wider line than it is given; what is longer goes on in further lines.
class QtLabel final : public QLabel {
 public:
    using QLabel::QLabel;
    // `line`: the most that it may ask for. Several lines are of about the same length, so that no word is
    // left alone.
    void SetLine(int line);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;  // of a wider label the lines are fewer

 private:
    int width_ = 0;  // of several lines
};

// The widget of the control as a child of `parent`, without texts. Null for kinds that are not shown.
QWidget* MakeWidget(const Control& control, QWidget& parent);

// Puts a caption, with its access key marked by "&", where the kind shows one.
void ShowCaption(const Control& control, QWidget& widget, const QString& caption);
// Puts everything else of the control into its widget.
void ShowState(const Control& control, QWidget& widget, ControlChange change);

// What the user's screen reader calls the control: its label, for lack of one the label before it, for lack
// of that the form's caption. Empty for kinds that show their own text.
QString AccessibleNameOf(const Form& form, const Control& control);

// The toolkit counts UTF-16 units, forms count characters.
Selection SelectionIn(const QLineEdit& box);
void Select(QLineEdit& box, Selection selection);

}  // namespace kq
