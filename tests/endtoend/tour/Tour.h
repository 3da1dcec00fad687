// A walk through the program as a person would take it, which tells and photographs what it sees.
#pragma once

#include "board/VirtualBoard.h"
#include "tests/endtoend/tour/AdapterName.h"
#include "tests/support/desktop/DesktopProgram.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flashwriter::testing {

struct TourOptions {
    std::string program;      // the desktop program
    std::string linesLibrary; // gives it the virtual board's lines
    std::string image;        // a raw image, to be written; it fits into 128 KiB
    std::string pictures;     // a directory for them, which exists
};

// Starts a desktop, a board and the program. Every step throws std::runtime_error as soon as
// something is not as it should be.
class Tour {
public:
    explicit Tour(const TourOptions& options);

    void fillForm();
    void write();
    void monitor();
    void quit();

private:
    void photograph(const std::string& name) const;
    void expectFlashHoldsImage() const;

    TourOptions m_options;
    std::vector<std::uint8_t> m_image;
    board::VirtualBoard m_board;
    std::vector<std::uint8_t> m_flashBefore;
    std::optional<AdapterName> m_port;
    std::optional<DesktopProgram> m_program;
};

} // namespace flashwriter::testing
