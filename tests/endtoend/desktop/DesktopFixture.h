// The shipped desktop program on a screen, with a virtual board at a port.
#pragma once

#include "board/VirtualBoard.h"
#include "tests/support/ImageFile.h"
#include "tests/support/desktop/DesktopProgram.h"

#include <gtest/gtest.h>

#include <string>

namespace flashwriter::testing {

inline const char* const SUCCESS = "The writing processing succeeded. ";
inline const char* const SUCCESS_LOG = "## Programming Mode\n"
                                       "## Block Blank Check & Erace... OK\n"
                                       "## Programming... OK\n"
                                       "## Write Complete";

// What a result window says of a failure. lastCommand: the second line of figures, and the third.
inline std::string failure(const std::string& code, const std::string& lastCommand) {
    return "The writing processing failed\nERROR:0x0000" + code + "\n" + lastCommand;
}

inline const char* const NO_COMMAND = "COM = 0x00, Retry = 0\n"
                                      "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n";

class DesktopFixture : public ::testing::Test {
protected:
    DesktopFixture() {
        m_options.target.flash.fill = 0x5A;
        m_options.pace = false;
    }

    // Powers a board up in place of any earlier one; its port.
    std::string plugIn() {
        m_board.start(m_options);
        return m_board.portPath();
    }

    // Ends the program as a person does; its exit status.
    std::optional<int> quit() {
        m_program.closeByFrame();
        return m_program.process().wait();
    }

    const ScreenReader& screen() const { return m_program.screen(); }

    board::BoardOptions m_options;
    board::VirtualBoard m_board;
    DesktopProgram m_program{FLASH_WRITER, LINES_PRELOAD};
};

} // namespace flashwriter::testing
