#include "ui/AnnouncedText.h"

namespace flashwriter {

namespace {

constexpr int LONGEST_RUN = 40; // characters without a place to break the line

// Long names would push a window beyond the screen's edge.
QString breakable(const QString& text) {
    QString result;
    int run = 0;
    for (const QChar character : text) {
        result.append(character);
        const bool breaks = character.isSpace() || character == '/' || character == '-';
        run = breaks ? 0 : run + 1;
        if (run >= LONGEST_RUN && !character.isHighSurrogate()) {
            result.append(QChar(0x200B)); // takes no room, and lets a line end behind it
            run = 0;
        }
    }
    return result;
}

} // namespace

void setAnnouncedText(QLabel& label, const QString& text) {
    label.setText(breakable(text));
    label.setAccessibleDescription(text);
}

} // namespace flashwriter
