#pragma once

#include "tests/kernel/hands/Message.h"

#include <functional>

namespace flashwriter::kernel {

// What a command comes to: the answer, and what is to be done once the answer is on its way: a
// click may open a window and come back when that one is closed.
struct Outcome {
    Words answer;
    std::function<void()> action; // or none
};

// Carries out a command, on the thread of the windows:
//   click NAME            the widget of this object name, which is to be seen
//   press KEYS            such as Return or Alt+W, where the keyboard is
//   close NAME            a window, as the button in its frame does
//   choose NAME ITEM      of a combo box
//   type NAME TEXT        into a field or a combo box, in place of what it held
//   text NAME             what it shows
//   items NAME            those of a combo box's list
//   enabled NAME          "yes" or "no", also of what is not to be seen
//   visible NAME          likewise; what there is not is not visible
//   windows               object name and title of each that is to be seen, by turns
//   shot FILE             a picture of them all, PNG
// click, press and close are answered as soon as they are known to be possible; what they set off
// has begun when the next command is carried out.
Outcome carryOut(const Words& command);

} // namespace flashwriter::kernel
