#include "tests/kernel/hands/Commands.h"

#include "tests/kernel/hands/Fingers.h"
#include "tests/kernel/hands/Widgets.h"

#include <QComboBox>
#include <QPointer>

#include <map>
#include <stdexcept>

namespace flashwriter::kernel {

namespace {

// The second and third word of a command; empty without one.
struct Operands {
    QString first;
    QString second;
};

using Command = Outcome (*)(const Operands&);

Outcome done(const std::string& text = "") {
    return {{DONE, text}, nullptr};
}

Outcome doneIf(bool condition) {
    return done(condition ? "yes" : "no");
}

// The widget may be gone by the time of the action: windows go when others do.
Outcome afterwards(QWidget& widget, void (*action)(QWidget&)) {
    return {{DONE, ""}, [action, target = QPointer<QWidget>(&widget)] {
                if (!target.isNull()) {
                    action(*target);
                }
            }};
}

Outcome itemsOf(const Operands& operands) {
    const auto* list = qobject_cast<QComboBox*>(&visibleWidget(operands.first));
    if (list == nullptr) {
        throw std::runtime_error(operands.first.toStdString() + " is no combo box");
    }
    Words items{DONE};
    for (int i = 0; i < list->count(); ++i) {
        items.push_back(list->itemText(i).toStdString());
    }
    return {items, nullptr};
}

Outcome listWindows() {
    Words words = windowWords();
    words.insert(words.begin(), DONE);
    return {words, nullptr};
}

const std::map<std::string, Command> COMMANDS{
    {"click", [](const Operands& it) { return afterwards(visibleWidget(it.first), clickOn); }},
    {"press",
     [](const Operands& it) {
         requireKeyboard();
         return Outcome{{DONE, ""}, [keys = it.first] { pressKeys(keys); }};
     }},
    {"close", [](const Operands& it) { return afterwards(visibleWidget(it.first), closeByFrame); }},
    {"choose",
     [](const Operands& it) {
         chooseFrom(visibleWidget(it.first), it.second);
         return done();
     }},
    {"type",
     [](const Operands& it) {
         typeInto(visibleWidget(it.first), it.second);
         return done();
     }},
    {"text",
     [](const Operands& it) { return done(textOf(visibleWidget(it.first)).toStdString()); }},
    {"items", itemsOf},
    {"enabled",
     [](const Operands& it) {
         const QWidget* widget = findWidget(it.first);
         return doneIf(widget != nullptr && widget->isEnabled());
     }},
    {"visible",
     [](const Operands& it) {
         const QWidget* widget = findWidget(it.first);
         return doneIf(widget != nullptr && widget->isVisible());
     }},
    {"windows", [](const Operands&) { return listWindows(); }},
    {"shot",
     [](const Operands& it) {
         pictureWindows(it.first);
         return done();
     }},
};

QString operand(const Words& command, std::size_t position) {
    return command.size() > position ? QString::fromStdString(command[position]) : QString();
}

} // namespace

Outcome carryOut(const Words& command) {
    const auto found = COMMANDS.find(command.front());
    if (found == COMMANDS.end()) {
        return {{REFUSED, "no command " + command.front()}, nullptr};
    }
    try {
        return found->second({operand(command, 1), operand(command, 2)});
    } catch (const std::runtime_error& error) {
        return {{REFUSED, error.what()}, nullptr};
    }
}

} // namespace flashwriter::kernel
