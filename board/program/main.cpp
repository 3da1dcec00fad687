// virtual-board: a simulated board on a pseudo-terminal, until it is told to stop.

#include "board/VirtualBoard.h"
#include "board/program/ProgramOptions.h"

#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using flashwriter::board::Bytes;
using flashwriter::board::ProgramOptions;
using flashwriter::board::VirtualBoard;

// A symbolic link for as long as this object lives.
class PortLink {
public:
    PortLink(std::string link, const std::string& port) : m_link(std::move(link)) {
        if (m_link.empty()) {
            return;
        }
        // What a board left behind that was killed is in nobody's way; anything else stays.
        if (std::filesystem::is_symlink(m_link)) {
            std::filesystem::remove(m_link);
        }
        std::filesystem::create_symlink(port, m_link);
    }
    ~PortLink() {
        std::error_code ignored;
        if (!m_link.empty()) {
            std::filesystem::remove(m_link, ignored);
        }
    }
    PortLink(const PortLink&) = delete;
    PortLink& operator=(const PortLink&) = delete;

private:
    std::string m_link;
};

sigset_t stopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

// Returns when a signal says so or, if it is for once, after a programming session.
void waitForTheEnd(const VirtualBoard& board, bool once) {
    const sigset_t signals = stopSignals();
    const timespec look{.tv_sec = 0, .tv_nsec = 50000000};
    while (!once || board.sessions() == 0) {
        if (sigtimedwait(&signals, nullptr, once ? &look : nullptr) > 0) {
            return;
        }
    }
}

void writeFile(const std::string& path, const char* contents, std::size_t size) {
    if (path.empty()) {
        return;
    }
    std::ofstream file(path, std::ios::binary);
    file.write(contents, static_cast<std::streamsize>(size));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

void writeBytes(const std::string& path, const Bytes& bytes) {
    writeFile(path, reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

int run(const ProgramOptions& options) {
    VirtualBoard board;
    board.start(options.board);
    {
        const PortLink link(options.link, board.portPath());
        std::printf("port %s\n", board.portPath().c_str());
        static_cast<void>(std::fflush(stdout));
        waitForTheEnd(board, options.once);
    }
    board.stop();
    writeBytes(options.flashOut, board.codeFlash());
    writeBytes(options.dataFlashOut, board.dataFlash());
    const std::string transcript = flashwriter::board::transcriptText(board.transcript());
    writeFile(options.transcript, transcript.data(), transcript.size());
    if (board.violations() > 0) {
        static_cast<void>(std::fprintf(
            stderr, "virtual-board: the host broke the protocol %zu times\n", board.violations()));
    }
    return options.strict && board.violations() > 0 ? flashwriter::board::kExitViolations
                                                    : flashwriter::board::kExitOk;
}

} // namespace

int main(int argc, char** argv) {
    try {
        ProgramOptions options;
        const int status = flashwriter::board::parseCommandLine(argc, argv, options);
        if (status >= 0) {
            return status;
        }
        // Before the board's thread starts, which inherits it: signals are waited for, not handled.
        const sigset_t signals = stopSignals();
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        return run(options);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "virtual-board: %s\n", error.what()));
        return flashwriter::board::kExitFailure;
    }
}
