#include "ui/WheelGuard.h"

#include <QComboBox>
#include <QEvent>

namespace flashwriter {

namespace {

class WheelFilter final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) {
            return false;
        }
        event->ignore();
        return true;
    }
};

} // namespace

void guardFromWheel(QComboBox& comboBox) {
    comboBox.setFocusPolicy(Qt::StrongFocus);
    comboBox.installEventFilter(new WheelFilter(&comboBox));
}

} // namespace flashwriter
