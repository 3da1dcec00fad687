#include "board/PortWatch.h"

#include "board/PseudoTerminal.h"

#include <cstring>

#include <sys/inotify.h>

namespace flashwriter::board {

PortWatch::PortWatch(const std::string& path) : m_notices(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (m_notices.valid() &&
        inotify_add_watch(m_notices.get(), path.c_str(), IN_OPEN | IN_CLOSE) < 0) {
        m_notices.reset();
    }
}

std::vector<bool> PortWatch::changes(const PseudoTerminal& terminal) {
    std::vector<bool> changes;
    countNotices(changes);
    // Equal notices in a row may be told as one, so the count can be off; the hang-up cannot.
    const bool hungUp = terminal.hungUp();
    if (hungUp && m_openings > 0) {
        m_openings = 0;
        changes.push_back(false);
    } else if (!hungUp && m_openings == 0) {
        m_openings = 1;
        changes.push_back(true);
    }
    return changes;
}

void PortWatch::countNotices(std::vector<bool>& changes) {
    alignas(inotify_event) char buffer[4096];
    ssize_t got = 0;
    while (m_notices.valid() && (got = read(m_notices.get(), buffer, sizeof buffer)) > 0) {
        const char* at = buffer;
        while (at < buffer + got) {
            inotify_event notice{};
            std::memcpy(&notice, at, sizeof notice);
            at += sizeof notice + notice.len;
            if ((notice.mask & IN_OPEN) != 0 && m_openings++ == 0) {
                changes.push_back(true);
            } else if ((notice.mask & IN_CLOSE) != 0 && m_openings > 0 && --m_openings == 0) {
                changes.push_back(false);
            }
        }
    }
}

} // namespace flashwriter::board
