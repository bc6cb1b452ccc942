// The layout of a form: rows and columns by the controls' places, sizes by the toolkit.
#pragma once

#include <QSize>
#include <vector>

#include "forms/qt/QtWidgets.h"

class QGridLayout;

namespace kq {

class QtFormLayout {
 public:
    // Lays out the widgets in `window`; once.
    QtFormLayout(QWidget& window, const Form& form, const Widgets& widgets);

    // The size that the controls need, with fonts and texts as they are: the width of all, drawn or cut off,
    // and the height of those that are drawn. Where the rest of the form is cut off, it ends just where that
    // would begin. What does not fit into `room` gets narrower boxes, broken labels and less space in
    // between.
    QSize NeededSize(const QSize& room, bool cut_off);
    // Follows what the user sees, which may differ from the form's order in a row of buttons.
    void SetTabOrder(const Form& form, const Widgets& widgets);

 private:
    struct Density;
    QSize SizeAt(const Density& density, int room, bool cut_off);
    void GiveAwaySpareRoom(const Form& form);
    void MakePart(QWidget& container, const Form& form, std::string_view frame, const Widgets& widgets);

    QWidget& window_;
    std::vector<QGridLayout*> grids_;
    std::vector<QtLabel*> alone_;         // labels over the whole width
    std::vector<QWidget*> pair_;          // the default and the cancel button, equally wide
    std::vector<QtLabel*> beside_boxes_;  // labels left of their box, one column in all frames
};

}  // namespace kq
