#include "ui/AnnouncedText.h"

namespace flashwriter {

void setAnnouncedText(QLabel& label, const QString& text) {
    label.setText(text);
    label.setAccessibleDescription(text);
}

} // namespace flashwriter
