#pragma once

class QWidget;

namespace flashwriter {

// To be called when a window over another one has gone: makes sure that the keyboard is with the
// other one. Some window managers leave it with nobody. Whoever has gone to another program keeps
// it there.
void giveKeyboardBack(QWidget& window);

} // namespace flashwriter
