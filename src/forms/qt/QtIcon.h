// Pictures for title bars on Qt.
#pragma once

#include <QIcon>

#include "forms/Form.h"

namespace kq {

class QtIcon final : public Icon {
 public:
    explicit QtIcon(QIcon icon) : icon_(std::move(icon)) {}
    const QIcon& Picture() const { return icon_; }

 private:
    QIcon icon_;
};

// Empty, which is the program's own icon, for null and for icons of other ports.
inline QIcon ToQtIcon(const IconPtr& icon) {
    const auto* const picture = dynamic_cast<const QtIcon*>(icon.get());
    return picture ? picture->Picture() : QIcon();
}

}  // namespace kq
