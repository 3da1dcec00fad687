#pragma once

namespace flashwriter {

// The whole program: reads the command line, writes the image, tells how it went. Returns the exit
// status: 0 only for an image that is written and verified. Once per process, on the main thread.
int consoleWrite(int argc, const char* const* argv);

} // namespace flashwriter
