// Each frame is a grid: labels, boxes, what stands behind boxes, buttons beside a list. The label columns of
// all frames are as wide as the widest, so boxes stand in one line through the whole form.
#include "platform/qt/QtFormLayout.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace kq {
namespace {

constexpr int kWrapWidth = 66;  // average characters, from where on a label is broken into lines
constexpr int kWrapLeast = 44;  // the least that lines are shortened to when they are made even
constexpr int kBoxWidth = 28;   // average characters, the least for a box

enum Column { kLabels, kBoxes, kBehind };

using Cells = std::vector<const Control*>;

// A frame's controls row by row.
struct Rows {
    std::vector<Cells> rows;  // an empty one: here stands the row of buttons
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

// One line, or as many as it needs at the most, of about the same length, so that no word is left alone.
int WidthOf(const QLabel& label, int character) {
    const QFontMetrics metrics = label.fontMetrics();
    const int whole = metrics.boundingRect(label.text()).width() + character;
    const int most = kWrapWidth * character;
    if (whole <= most) return whole;
    const auto height = [&](int width) {
        return metrics.boundingRect(QRect(0, 0, width, 0), Qt::TextWordWrap, label.text()).height();
    };
    const int needed = height(most);
    int width = most;
    while (width - character >= kWrapLeast * character && height(width - character) == needed)
        width -= character;
    return std::min(width + character, most);
}

}  // namespace

QtFormLayout::QtFormLayout(QWidget& window, const Form& form, const Widgets& widgets) : window_(window) {
    MakePart(window, form, {}, widgets);
    // Room to spare is the list's; without one it is left below.
    const bool has_list = std::ranges::any_of(
        form.Controls(), [](const Control& control) { return control.Kind() == ControlKind::ListView; });
    if (!has_list) grids_.front()->setRowStretch(grids_.front()->rowCount(), 1);
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
    int row = -1;
    for (const auto& cells : rows.rows) {
        ++row;
        if (cells.empty()) {
            grid->addLayout(ButtonRow(form, rows.buttons, widgets, *container.style()), row, 0, 1,
                            all_columns);
            continue;
        }
        QWidget& first = *widgets.at(cells[0]);
        if (IsLabelledRow(cells)) {
            beside_boxes_.push_back(qobject_cast<QLabel*>(&first));
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
        if (auto* const label = qobject_cast<QLabel*>(&first); label && cells.size() == 1)
            wrapped_.push_back(label);
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

QSize QtFormLayout::NeededSize(bool cut_off) {
    const int character = window_.fontMetrics().averageCharWidth();
    for (auto* const label : wrapped_)
        label->setMinimumWidth(WidthOf(*label, character));
    int widest = 0;
    for (const auto* const label : beside_boxes_)
        widest = std::max(widest, label->sizeHint().width());
    for (auto* const grid : grids_) {
        if (!beside_boxes_.empty()) grid->setColumnMinimumWidth(kLabels, widest);
        if (!beside_boxes_.empty()) grid->setColumnMinimumWidth(kBoxes, kBoxWidth * character);
        const int line = window_.fontMetrics().height();
        const int between = line * 3 / 5;
        const int edge = line * 4 / 5;
        grid->setSpacing(between);
        if (grid == grids_.front()) grid->setContentsMargins(line, edge, line, cut_off ? between : edge);
    }
    // A text that has just changed counts at once; the toolkit by itself would measure it a turn later.
    for (auto* const layout : window_.findChildren<QLayout*>())
        layout->invalidate();
    for (auto* const grid : grids_)
        grid->parentWidget()->updateGeometry();
    const QLayout& all = *window_.layout();
    return all.totalSizeHint().expandedTo(all.totalMinimumSize());
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
