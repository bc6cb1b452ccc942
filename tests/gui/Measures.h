// What a designer's ruler finds: texts that do not fit, widgets that leave their window or lie on each other.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

namespace kq {

// One line for each fault, by the widget's name.
std::vector<std::string> LayoutFaults(const QWidget& window);
// In a window of the language that nobody speaks: what is plain all the same, and what has lost its end.
// `told` are words that came from elsewhere. Buttons of message boxes are the toolkit's own.
std::vector<std::string> UntranslatedTexts(const QWidget& window, const std::vector<std::string>& told);
// Access keys of the window that stand for two things.
std::vector<std::string> DoubleAccessKeys(const QWidget& window);
// Widgets in the order in which Tab reaches them, that are not also in reading order: line by line.
std::vector<std::string> TabOrderFaults(QWidget& window);

}  // namespace kq
