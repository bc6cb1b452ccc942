// A window as a screen reader is told of it.
#pragma once

#include <QWidget>
#include <string>

namespace kq {

// One line for each part: role, name, what else is said of it. Parts of parts are indented.
std::string AccessibleTree(QWidget& window);

}  // namespace kq
