#pragma once

#include <mutex>
#include <string_view>

namespace flashwriter {

// Whether a write of at most PIPE_BUF bytes to the descriptor would not have to wait for anybody. A
// signal handler may call it.
bool takesAtOnce(int descriptor);

// Writes lines to a descriptor whose reader may be slow, stopped or gone, or whose disk may be
// full. It never waits: a line that is not taken at once is dropped, for a write to a board must
// not stand still for its diagnostics. Before the next line that is taken stands how many were not.
//
// The descriptor stays in the mode in which it came: not waiting (O_NONBLOCK) would hold for every
// program that shares it.
class DiagnosticStream {
public:
    // Borrowed; nothing is done to it here.
    explicit constexpr DiagnosticStream(int descriptor) : m_descriptor(descriptor) {}
    ~DiagnosticStream();
    DiagnosticStream(const DiagnosticStream&) = delete;
    DiagnosticStream& operator=(const DiagnosticStream&) = delete;

    // Without its line break. Any thread; never throws.
    void writeLine(std::string_view line);

private:
    int target();
    bool tellDropped();
    bool put(std::string_view text, std::string_view end);

    // Held while a line is written, so that the room that was seen is still there.
    std::mutex m_mutex;
    int m_descriptor;
    int m_terminal = -1; // the terminal behind m_descriptor, opened anew: this one never waits
    bool m_wasTerminalOpened = false; // or at least tried to
    unsigned long m_dropped = 0;
    bool m_isLineOpen = false; // what was taken last did not end with a line break
};

} // namespace flashwriter
