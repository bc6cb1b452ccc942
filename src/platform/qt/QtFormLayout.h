// Where the widgets of a form stand: rows and columns by the controls' places, sizes by the toolkit.
#pragma once

#include <QSize>
#include <vector>

#include "platform/qt/QtWidgets.h"

class QGridLayout;
class QLabel;

namespace kq {

class QtFormLayout {
 public:
    // Lays out the widgets in `window`; once.
    QtFormLayout(QWidget& window, const Form& form, const Widgets& widgets);

    // The size that the drawn controls need, with fonts and texts as they are. Where the rest of the form is
    // cut off, it ends just where that would begin.
    QSize NeededSize(bool cut_off);
    // Follows what the user sees, which may differ from the form's order in a row of buttons.
    void SetTabOrder(const Form& form, const Widgets& widgets);

 private:
    class Part;
    void MakePart(QWidget& container, const Form& form, std::string_view frame, const Widgets& widgets);

    QWidget& window_;
    std::vector<QGridLayout*> grids_;
    std::vector<QLabel*> wrapped_;       // labels over the whole width
    std::vector<QLabel*> beside_boxes_;  // labels left of their box, one column in all frames
};

}  // namespace kq
