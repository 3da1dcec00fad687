// The program as users run it, and what a board that never answers makes of it.
#pragma once

#include "tests/support/ChildProcess.h"

#include <string>
#include <vector>

namespace flashwriter::testing {

inline ChildOptions flashwrite(const std::vector<std::string>& operands) {
    ChildOptions options;
    options.arguments = {FLASHWRITE};
    options.arguments.insert(options.arguments.end(), operands.begin(), operands.end());
    return options;
}

// A port behind which nobody answers. The test keeps no end of it open that the program could find.
class SilentPort {
public:
    SilentPort() { m_terminal.closeSlave(); }
    const std::string& path() const { return m_terminal.path(); }
    std::string received() const { return m_terminal.taken(); }

private:
    Terminal m_terminal;
};

inline const char* const SILENT_BOARD_LOG = "## Programming Mode\n"
                                            "## Write Failed\n"
                                            "The writing processing failed\n"
                                            "ERROR:0x00002009\n"
                                            "COM = 0x9A, Retry = 5\n"
                                            "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n";

inline std::string neverAnswered(const std::string& port) {
    return "The board never answered: check that it has power, that " + port +
           " is its adapter, and that the data line and DTR are wired to it; if it stays so, plug "
           "the "
           "adapter in again.\n";
}

} // namespace flashwriter::testing
