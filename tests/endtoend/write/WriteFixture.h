// The shipped program against the virtual board: what is written is what is read back.
#pragma once

#include "board/VirtualBoard.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace flashwriter::testing {

using Bytes = std::vector<std::uint8_t>;

// The content of a file; fails the test when there is none.
Bytes contentOf(const std::string& path);

// Runs a tool of the system to its end; its status has to be 0.
void runTool(const std::vector<std::string>& arguments);

class WriteFixture : public ::testing::Test {
protected:
    WriteFixture() {
        m_options.target.flash.codeKib = 256;
        m_options.target.flash.fill = 0x5A;
    }

    // The program on a terminal, with the board's lines.
    ChildOptions flashwrite(const std::string& speed, const std::string& file) const;

    // Powers a board up, writes the file as a person would, and compares the board's flash with
    // the image. The log and the outcome on the terminal are those of a success. A write that fails
    // because the machine was held up is made anew, once.
    void writeAndReadBack(const std::string& speed, const std::string& file, const Bytes& image);

    board::BoardOptions m_options;
    board::VirtualBoard m_board;

private:
    struct Written {
        std::optional<int> status; // the program's; none while it runs
        std::string output;
        std::string terminal;
        Bytes before; // in the board's flash
    };
    Written write(const std::string& speed, const std::string& file);
};

} // namespace flashwriter::testing
