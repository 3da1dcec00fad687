#include "tests/kernel/runs/ShownWindow.h"

#include <stdexcept>

namespace flashwriter::kernel {

namespace {

const char* const SOCKET = "/run/hands";
constexpr std::chrono::seconds PATIENCE{60};

} // namespace

ShownWindow::ShownWindow(Guest& guest, const std::string& port) {
    guest.shell("ln -sfn " + port + " " + portName());
    const std::string line = std::string("exec 2>/run/diagnostics; rm -f ") + SOCKET +
                             "; export LD_PRELOAD=" + WINDOW_HANDS_PRELOAD + "; exec \"$0\"";
    m_program = guest.start(
        {.arguments = {"/bin/sh", "-c", line, FLASH_WRITER},
         .environment = {"QT_QPA_PLATFORM=offscreen", "QT_FORCE_STDERR_LOGGING=1", "LC_ALL=C.UTF-8",
                         "XDG_RUNTIME_DIR=/run", std::string("WINDOW_HANDS=") + SOCKET}});
    m_client =
        guest.start({.arguments = {WINDOW_HANDS, SOCKET}, .environment = {}, .hasInput = true});
    m_hands = std::make_unique<WindowHands>([this](const std::string& text) { return ask(text); },
                                            PATIENCE);
    m_hands->waitEnabled("writeButton");
}

std::string ShownWindow::ask(const std::string& line) {
    m_client->input(line + "\n");
    m_client->waitFor(
        [this](const ProcessState& state) {
            return state.status || state.output.find('\n', m_answered) != std::string::npos;
        },
        PATIENCE);
    const std::string said = m_client->output();
    const std::size_t end = said.find('\n', m_answered);
    if (end == std::string::npos) {
        throw std::runtime_error("no answer to " + line + ": " + m_client->error());
    }
    const std::string answer = said.substr(m_answered, end - m_answered);
    m_answered = end + 1;
    return answer;
}

void ShownWindow::begin(const std::string& speed, const std::string& file) {
    m_hands->choose("baudRateComboBox", speed);
    m_hands->type("filePathTextField", file);
    m_hands->click("writeButton");
}

std::string ShownWindow::write(const std::string& speed, const std::string& file) {
    begin(speed, file);
    return m_hands->waitText("resultMessage", ".");
}

void ShownWindow::dismissResult() {
    m_hands->click("okButton");
    m_hands->waitGone("progressWindow");
}

} // namespace flashwriter::kernel
