#include "console/HelpText.h"

namespace flashwriter {

const std::string_view HELP_TEXT =
    R"(Usage: flashwrite PORT SPEED FILE
       flashwrite --help

Writes a firmware image into a microcontroller board over a USB-serial adapter:
puts the board into its programming mode, erases the blocks that the image
needs, writes them and compares checksums. Other blocks keep their contents.

  PORT   device of the adapter, for example /dev/ttyUSB0 or /dev/cu.usbserial-10
  SPEED  bits per second while writing: 115200 or 500000
  FILE   image to write: S-records if its name ends in .mot,
         a raw image for address 0 if it ends in .bin
A PORT or FILE that begins with a dash comes after --.

Standard output tells the stages and the outcome; a failure ends with a line
that says what to do. Standard error shows the progress if it is a terminal,
and takes the diagnostics if it is not: 2>diagnostics.log keeps them.

Ctrl-C ends the program at once. A board that was being written then has
incomplete contents; a new write mends it.

Exit status:
  0      the image is written and verified
  1      the write failed
  2      the arguments are wrong; nothing was opened
  128+n  ended by signal n; 130 for Ctrl-C
)";

} // namespace flashwriter
