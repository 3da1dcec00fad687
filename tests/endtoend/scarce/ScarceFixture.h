// The command in a process that runs out of something.
#pragma once

#include "board/VirtualBoard.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace flashwriter::testing {

class ScarceFixture : public ::testing::Test {
protected:
    using Bytes = std::vector<std::uint8_t>;

    static constexpr int NOT_REACHED = 75;

    // program understands FAILING_ALLOCATION as ScarceFlashwrite.cpp does, by itself or by what is
    // loaded into it.
    ScarceFixture(std::string program, const std::string& preload)
        : m_program(std::move(program)), m_preload("LD_PRELOAD=" + preload) {
        m_options.pace = false;
        m_options.target.flash.codeKib = 16;
        m_board.start(m_options);
    }

    // Runs the command once, with another image than last time, and returns its status.
    int write(const std::string& variable, const std::string& extension,
              ChildStream error = ChildStream::Pipe) {
        m_turn = 1 - m_turn;
        const Bytes& image = m_images.at(m_turn);
        const bool isMot = extension == ".mot";
        const ImageFile file("image" + extension,
                             isMot ? motText(image) : std::string(image.begin(), image.end()));
        const Bytes before = m_board.codeFlash();
        ChildProcess program(scarceFlashwrite(m_board.portPath(), file.path(), variable, error));
        const int status = endOf(program, variable);
        const bool isTold = program.output().find("succeeded") != std::string::npos;
        if (isTold || status % NOT_REACHED == 0) {
            EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before)) << variable;
        }
        return status;
    }

    ChildOptions scarceFlashwrite(const std::string& port, const std::string& file,
                                  const std::string& variable, ChildStream error) const {
        ChildOptions options;
        options.arguments = {m_program, port, "500000", file};
        options.environment = {m_preload, variable};
        options.environment.insert(options.environment.end(), m_more.begin(), m_more.end());
        options.error = error;
        return options;
    }

    // It ends by itself, with a status that it is said to have, and not without a word.
    static int endOf(ChildProcess& program, const std::string& variable) {
        const int status = program.wait(std::chrono::seconds(60)).value_or(-1);
        const std::string words = program.output() + program.error() + program.terminal();
        EXPECT_TRUE(status % NOT_REACHED == 0 || status % NOT_REACHED == 1)
            << variable << ": " << status << "\n"
            << words;
        EXPECT_NE(words, "") << variable;
        return status;
    }

    // Runs with a number that is greater each time, by as much as stride() says of it, until one is
    // greater than there are allocations and the status is the one that belongs to a run without
    // want.
    template <class Run>
    static void failEachAllocation(
        int plainStatus, const Run& run, int (*stride)(int) = [](int) { return 1; }) {
        int number = 0;
        int status = 0;
        do {
            number += stride(number);
            status = run("FAILING_ALLOCATION=" + std::to_string(number));
        } while (status != NOT_REACHED + plainStatus && number < 1000);
        EXPECT_GT(number, 50);
        EXPECT_LT(number, 1000);
    }

    std::vector<std::string> m_more; // variables of the environment
    board::BoardOptions m_options;
    board::VirtualBoard m_board;
    const std::array<Bytes, 2> m_images{patternImage(1000), Bytes(1000, 0xA5)};
    std::size_t m_turn = 0;

private:
    const std::string m_program;
    const std::string m_preload;
};

} // namespace flashwriter::testing
