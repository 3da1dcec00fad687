#include "tests/endtoend/tour/Tour.h"

#include "tests/support/ImageFile.h"

#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace flashwriter::testing {

namespace {

const char* const GREETING = "Hello from the virtual board.";
constexpr std::uint32_t MONITOR_BPS = 9600; // what the window offers first

std::vector<std::uint8_t> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> content(std::istreambuf_iterator<char>(file), {});
    if (content.empty()) {
        throw std::runtime_error("there is no image " + path);
    }
    return content;
}

board::BoardOptions boardOptions() {
    board::BoardOptions options;
    options.target.flash.codeKib = 128;
    options.target.flash.fill = 0xA5;
    options.target.monitor = {std::string(GREETING) + "\r\n", std::chrono::milliseconds(400),
                              MONITOR_BPS};
    return options;
}

void tell(const std::string& what, const std::string& text) {
    std::cout << what << '\n';
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::cout << "    " << line << '\n';
    }
    std::cout.flush();
}

void require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

} // namespace

Tour::Tour(const TourOptions& options) : m_options(options), m_image(contentOf(options.image)) {
    m_board.start(boardOptions());
    m_flashBefore = m_board.codeFlash();
    m_port.emplace(m_board.portPath());
    m_program.emplace(options.program, options.linesLibrary);
}

void Tour::fillForm() {
    m_program->enter(PORT, m_port->path());
    m_program->enter(IMAGE_FILE, m_options.image);
    require(m_program->waitUntilShown("statusLabel", "Ready to write."),
            "the program finds fault with the form: " + m_program->shown("statusLabel"));
    tell("The form:", "Port:  " + m_program->shown(PORT) + "\nSpeed: " + m_program->shown(SPEED) +
                          "\nImage: " + m_program->shown(IMAGE_FILE) + "\n" +
                          m_program->shown("statusLabel"));
    photograph("main-window");
}

void Tour::write() {
    m_program->clickOn("writeButton");
    const auto isHalfWay = [](const Accessible& label) {
        const std::string text = label.description();
        return text.starts_with("Writing data. (") && text.substr(15) >= "50" &&
               text.substr(15, 3) != "100";
    };
    require(m_program->screen().waitUntil(PROGRESS, isHalfWay), "no progress is to be seen");
    photograph("writing");
    tell("Meanwhile:", m_program->shown(PROGRESS));
    const std::string result = m_program->result();
    tell("The result:", result);
    photograph("result");
    m_program->dismissResult();
    tell("The log:", m_program->shown(LOG));
    require(result == "The writing processing succeeded. ", "the write failed");
    require(m_program->shown(LOG).ends_with("## Write Complete"), "the log does not end well");
    expectFlashHoldsImage();
}

void Tour::expectFlashHoldsImage() const {
    require(m_board.codeFlash() == flashAfter(m_image, m_flashBefore),
            "the board's flash differs from the image");
    std::cout << "The board's flash holds the image's " << m_image.size()
              << " bytes, and beyond its last block what it held before.\n";
}

void Tour::monitor() {
    m_program->clickOn("monitorOpenButton");
    const std::string line = std::string(GREETING) + "\n";
    const std::string lines = line + line + line;
    const bool isHeard = m_program->screen().waitUntil(
        LOG, [&](const Accessible& log) { return log.text().find(lines) != std::string::npos; });
    tell("The serial monitor:", m_program->shown(LOG));
    require(isHeard, "the board is not to be heard");
    photograph("monitor");
    m_program->clickOn("monitorOpenButton");
    require(m_program->waitUntilEnabled("writeButton"), "the monitor does not close");
}

void Tour::quit() {
    m_program->closeByFrame();
    require(m_program->process().wait() == 0, "the program does not end well");
}

// The main window with its frame, and whatever is over it.
void Tour::photograph(const std::string& name) const {
    moveTo({5, 5}); // out of the way
    screenshot(m_options.pictures + "/" + name + ".png", m_program->frame());
}

} // namespace flashwriter::testing
