#pragma once

namespace flashwriter {

// Makes sure that what goes to standard output and standard error goes nowhere else and ends
// nothing. A standard descriptor that the program was started without is opened on /dev/null: the
// serial port would get its number otherwise, and the log would go to the board. A reader that has
// gone no longer ends the program. First thing in main().
void secureStandardStreams();

} // namespace flashwriter
