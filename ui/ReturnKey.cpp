#include "ui/ReturnKey.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QObject>

namespace flashwriter {

namespace {

class RepeatFilter final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        return event->type() == QEvent::KeyPress &&
               isRepeatedReturn(static_cast<const QKeyEvent&>(*event));
    }
};

class ReturnFilter final : public QObject {
public:
    ReturnFilter(QObject* parent, QAbstractButton& button) : QObject(parent), m_button(button) {}
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (isReturn(key) && !key.isAutoRepeat()) {
            m_button.click();
        }
        return isReturn(key);
    }

private:
    QAbstractButton& m_button;
};

} // namespace

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool isRepeatedReturn(const QKeyEvent& event) {
    return event.isAutoRepeat() && isReturn(event);
}

void ignoreRepeatedReturn(QAbstractButton& button) {
    button.installEventFilter(new RepeatFilter(&button));
}

void pressOnReturn(QLineEdit& field, QAbstractButton& button) {
    field.installEventFilter(new ReturnFilter(&field, button));
}

} // namespace flashwriter
