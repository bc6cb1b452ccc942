#include "gui/AccessibleTree.h"

#include <QAccessible>
#include <QMetaEnum>

namespace kq {
namespace {

std::string Said(QAccessibleInterface& part, QAccessible::Text text) {
    return part.text(text).toStdString();
}

void Add(std::string& tree, QAccessibleInterface& part, int depth) {
    const QAccessible::State state = part.state();
    if (state.invisible) return;
    tree += std::string(static_cast<std::size_t>(depth) * 2, ' ');
    tree += QMetaEnum::fromType<QAccessible::Role>().valueToKey(part.role());
    tree += " \"" + Said(part, QAccessible::Name) + "\"";
    const auto add = [&tree](const std::string& word, const std::string& value) {
        if (!value.empty()) tree += " " + word + "=\"" + value + "\"";
    };
    add("value", Said(part, QAccessible::Value));
    add("description", Said(part, QAccessible::Description));
    add("key", Said(part, QAccessible::Accelerator));
    if (state.focusable) tree += " focusable";
    if (state.disabled) tree += " disabled";
    if (state.checked) tree += " checked";
    if (state.selected) tree += " selected";
    if (state.passwordEdit) tree += " password";
    if (state.defaultButton) tree += " default";
    tree += "\n";
    for (int i = 0; i < part.childCount(); ++i) {
        if (QAccessibleInterface* const child = part.child(i)) Add(tree, *child, depth + 1);
    }
}

}  // namespace

std::string AccessibleTree(QWidget& window) {
    std::string tree;
    if (QAccessibleInterface* const part = QAccessible::queryAccessibleInterface(&window))
        Add(tree, *part, 0);
    return tree;
}

}  // namespace kq
