#pragma once

#include "board/Descriptor.h"

#include <string>
#include <vector>

namespace flashwriter::board {

class PseudoTerminal;

// Tells when the host opens the port, and when its last descriptor is closed. A pseudo-terminal
// itself only tells that nobody has it open now, so a close and an opening right after it would be
// missed; the file system's notices tell both.
class PortWatch {
public:
    explicit PortWatch(const std::string& path);

    // Becomes readable when there is something to ask for. -1 when the system has no notices left;
    // then changes() is to be asked every few milliseconds.
    int fd() const { return m_notices.get(); }

    // What happened since the last call, in order: true for opened, false for closed.
    std::vector<bool> changes(const PseudoTerminal& terminal);

    bool open() const { return m_openings > 0; }

private:
    void countNotices(std::vector<bool>& changes);

    Descriptor m_notices;
    int m_openings = 0; // descriptors of the port that are open, as far as is known
};

} // namespace flashwriter::board
