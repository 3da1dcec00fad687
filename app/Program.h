#pragma once

namespace flashwriter {

// The desktop program from its start to its end; the exit status. Once per process, on the main
// thread. Arguments are not looked at, neither by the program nor by the toolkit.
int runProgram(int argc, char** argv);

} // namespace flashwriter
