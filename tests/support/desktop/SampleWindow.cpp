// A window of every kind of control that the tests' hands and screen reader have to do with:
//   sample-window
// The field takes whatever text is dropped on it; the button copies the field to the log.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

template <class Control>
Control* add(QVBoxLayout* layout, const QString& name) {
    auto* control = new Control;
    control->setObjectName(name);
    control->setAccessibleName(name);
    layout->addWidget(control);
    return control;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle("Sample (1)");
    auto* layout = new QVBoxLayout(&window);
    auto* field = add<QLineEdit>(layout, "field");
    auto* label = add<QLabel>(layout, "");
    label->setText("&List:");
    auto* list = add<QComboBox>(layout, "list");
    list->setEditable(true);
    list->addItems({"first", "second"});
    label->setBuddy(list);
    auto* bar = add<QProgressBar>(layout, "bar");
    bar->setValue(45);
    auto* button = add<QPushButton>(layout, "button");
    button->setText("Copy");
    auto* log = add<QPlainTextEdit>(layout, "log");
    log->setReadOnly(true);
    QObject::connect(button, &QPushButton::clicked, log,
                     [=] { log->appendPlainText(field->text()); });
    window.show();
    return QApplication::exec();
}
