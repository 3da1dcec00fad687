#pragma once

class QComboBox;

namespace flashwriter {

// From now on the wheel changes what the combo box holds only while the keyboard is there: whoever
// scrolls past it means something else.
void guardFromWheel(QComboBox& comboBox);

} // namespace flashwriter
