// Each frame is a grid of labels, boxes, texts behind boxes, and buttons beside a list. The label columns of
// all frames have the width of the widest one, so the boxes of the whole form are aligned.
#include "forms/qt/QtFormLayout.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace kq {
namespace {

enum Column { kLabels, kBoxes, kBehind };

using Cells = std::vector<const Control*>;

// A frame's controls row by row.
struct Rows {
    std::vector<Cells> rows;  // an empty one is the row of buttons
    Cells buttons;
    Cells side;

    Rows(const Form& form, std::string_view frame) {
        for (const auto& control : form.Controls()) {
            if (control.Row().frame != frame || control.Kind() == ControlKind::Timer) continue;
            switch (control.Row().place) {
                case Place::NextRow:
                    rows.push_back({&control});
                    break;
                case Place::SameRow:
                    if (rows.empty() || rows.back().empty()) rows.emplace_back();
                    rows.back().push_back(&control);
                    break;
                case Place::ButtonRow:
                    if (buttons.empty()) rows.emplace_back();
                    buttons.push_back(&control);
                    break;
                case Place::Side:
                    side.push_back(&control);
                    break;
            }
        }
    }
};

bool IsLabelledRow(const Cells& cells) {
    return cells.size() > 1 && cells[0]->Kind() == ControlKind::Label &&
           cells[0]->Row().buddy == cells[1]->Name();
}

// In the order of the desktop: some have Cancel before OK and both at the end.
QHBoxLayout* ButtonRow(const Form& form, const Cells& buttons, const Widgets& widgets, const QStyle& style) {
    auto* const row = new QHBoxLayout;
    const int desktop = style.styleHint(QStyle::SH_DialogButtonLayout);
    const bool ends_with_ok = desktop == 1 || desktop == 3;  // macOS, GNOME
    const auto rank = [&](const Control* button) {
        if (!ends_with_ok) return 0;
        return button == form.DefaultButton() ? 2 : button == form.CancelButton() ? 1 : 0;
    };
    Cells ordered = buttons;
    std::ranges::stable_sort(ordered, {}, rank);
    bool stretched = false;
    for (const Control* const button : ordered) {
        const bool pair = button == form.DefaultButton() || button == form.CancelButton();
        if (!stretched && (pair || !ends_with_ok)) {
            row->addStretch(1);
            stretched = true;
        }
        row->addWidget(widgets.at(button));
    }
    return row;
}

}  // namespace

// The spacing of the controls. Lengths in average characters, spaces in fifths of a line.
struct QtFormLayout::Density {
    int line;   // from where on a label alone is broken
    int label;  // the same for a label beside its box
    int box;    // the least for a box
    int space;  // between controls
    int edge;   // above and below all of them
};

QtFormLayout::QtFormLayout(QWidget& window, const Form& form, const Widgets& widgets) : window_(window) {
    MakePart(window, form, {}, widgets);
    for (const Control* const button : {form.DefaultButton(), form.CancelButton()}) {
        if (button) pair_.push_back(widgets.at(button));
    }
    GiveAwaySpareRoom(form);
}

// It is the list's, else the last frame's, around its controls; else it is left below.
void QtFormLayout::GiveAwaySpareRoom(const Form& form) {
    const bool has_list = std::ranges::any_of(
        form.Controls(), [](const Control& control) { return control.Kind() == ControlKind::ListView; });
    if (has_list) return;
    QGridLayout& all = *grids_.front();
    const QLayoutItem* const last = all.itemAtPosition(all.rowCount() - 1, kLabels);
    const auto part = std::ranges::find_if(
        grids_, [&](const QGridLayout* grid) { return last && grid->parentWidget() == last->widget(); });
    if (part == grids_.end()) {
        all.setRowStretch(all.rowCount(), 1);
        return;
    }
    all.setRowStretch(all.rowCount() - 1, 1);
    (*part)->setRowStretch(0, 1);
    (*part)->setRowStretch((*part)->rowCount(), 1);
}

void QtFormLayout::MakePart(QWidget& container, const Form& form, std::string_view frame,
                            const Widgets& widgets) {
    auto* const grid = new QGridLayout(&container);
    if (&container != &window_) grid->setContentsMargins(0, 0, 0, 0);
    grids_.push_back(grid);
    const Rows rows(form, frame);
    std::size_t behind = 0;
    for (const auto& cells : rows.rows) {
        if (IsLabelledRow(cells)) behind = std::max(behind, cells.size() - 2);
    }
    const int columns = kBehind + static_cast<int>(behind);
    const int all_columns = columns + (rows.side.empty() ? 0 : 1);
    grid->setColumnStretch(kBoxes, 1);
    int side_row = -1;
    int row = &container == &window_ ? -1 : 0;  // above a frame's controls is a row for room to spare
    for (const auto& cells : rows.rows) {
        ++row;
        if (cells.empty()) {
            grid->addLayout(ButtonRow(form, rows.buttons, widgets, *container.style()), row, 0, 1,
                            all_columns);
            continue;
        }
        QWidget& first = *widgets.at(cells[0]);
        if (IsLabelledRow(cells)) {
            beside_boxes_.push_back(dynamic_cast<QtLabel*>(&first));
            grid->addWidget(&first, row, kLabels);
            grid->addWidget(widgets.at(cells[1]), row, kBoxes, 1, cells.size() > 2 ? 1 : columns - kBoxes);
            for (std::size_t i = 2; i < cells.size(); ++i)
                grid->addWidget(widgets.at(cells[i]), row, kBehind + static_cast<int>(i) - 2);
        } else if (cells.size() > 1) {
            auto* const line = new QHBoxLayout;
            for (const Control* const cell : cells)
                line->addWidget(widgets.at(cell));
            line->addStretch(1);
            grid->addLayout(line, row, 0, 1, columns);
        } else if (cells[0]->Kind() == ControlKind::Button) {
            grid->addWidget(&first, row, kBoxes, 1, columns - kBoxes, Qt::AlignLeft);
        } else {
            grid->addWidget(&first, row, 0, 1, columns);
        }
        if (auto* const label = dynamic_cast<QtLabel*>(&first); label && cells.size() == 1)
            alone_.push_back(label);
        if (cells[0]->Kind() == ControlKind::ListView && (side_row < 0 || cells[0]->Visible())) {
            side_row = row;
            grid->setRowStretch(row, 1);
        }
        if (cells[0]->Kind() == ControlKind::Frame) MakePart(first, form, cells[0]->Name(), widgets);
    }
    if (rows.side.empty()) return;
    auto* const side = new QVBoxLayout;
    for (const Control* const control : rows.side)
        side->addWidget(widgets.at(control));
    side->addStretch(1);
    grid->addLayout(side, std::max(side_row, 0), columns);
}

QSize QtFormLayout::NeededSize(const QSize& room, bool cut_off) {
    static constexpr Density kDensities[] = {{66, 66, 28, 3, 4}, {66, 18, 14, 3, 4}, {66, 18, 14, 1, 2}};
    QSize size;
    for (const Density& density : kDensities) {
        size = SizeAt(density, room.width(), cut_off);
        if (size.expandedTo(room) == room) break;
    }
    return size;
}

QSize QtFormLayout::SizeAt(const Density& density, int room, bool cut_off) {
    const QFontMetrics metrics = window_.fontMetrics();
    const int character = metrics.averageCharWidth();
    const int line = metrics.height();
    const int space = line * density.space / 5;
    const int edge = line * density.edge / 5;
    for (auto* const label : alone_)
        label->SetLine(std::min(density.line * character, room - 2 * line));
    int widest = 0;
    for (auto* const label : beside_boxes_) {
        label->SetLine(density.label * character);
        widest = std::max(widest, label->sizeHint().width());
    }
    int wider = 0;
    for (const auto* const button : pair_)
        wider = std::max(wider, button->sizeHint().width());
    for (auto* const button : pair_)
        button->setMinimumWidth(wider);
    for (auto* const grid : grids_) {
        if (!beside_boxes_.empty()) grid->setColumnMinimumWidth(kLabels, widest);
        if (!beside_boxes_.empty()) grid->setColumnMinimumWidth(kBoxes, density.box * character);
        grid->setSpacing(space);
        if (grid == grids_.front()) grid->setContentsMargins(line, edge, line, cut_off ? space : edge);
    }
    // A changed text is measured immediately; the toolkit would do it one turn later.
    for (auto* const layout : window_.findChildren<QLayout*>())
        layout->invalidate();
    for (auto* const grid : grids_)
        grid->parentWidget()->updateGeometry();
    const QLayout& all = *window_.layout();
    QSize size = all.totalSizeHint().expandedTo(all.totalMinimumSize());
    for (auto* const grid : grids_) {
        if (grid == grids_.front() || !grid->parentWidget()->isHidden()) continue;
        size.setWidth(std::max(size.width(), grid->totalSizeHint().width() + 2 * line));
    }
    if (!all.hasHeightForWidth()) return size;
    return {size.width(), std::max(all.totalHeightForWidth(size.width()), all.totalMinimumSize().height())};
}

void QtFormLayout::SetTabOrder(const Form& form, const Widgets& widgets) {
    Cells order;
    for (const auto& control : form.Controls()) {
        if (control.TakesFocus()) order.push_back(&control);
    }
    const auto in_row = [](const Control* control) { return control->Row().place == Place::ButtonRow; };
    const auto left_edge = [&](const Control* control) {
        return widgets.at(control)->mapTo(&window_, QPoint(0, 0)).x();
    };
    for (auto first = std::ranges::find_if(order, in_row); first != order.end();) {
        const auto last = std::find_if_not(first, order.end(), in_row);
        std::ranges::stable_sort(first, last, {}, left_edge);
        first = std::find_if(last, order.end(), in_row);
    }
    for (std::size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(widgets.at(order[i - 1]), widgets.at(order[i]));
}

}  // namespace kq
