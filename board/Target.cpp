#include "board/Target.h"

#include <algorithm>
#include <utility>

namespace flashwriter::board {

const char* modeName(TargetMode mode) {
    switch (mode) {
    case TargetMode::inReset:
        return "in reset";
    case TargetMode::running:
        return "running";
    case TargetMode::awaitPulse:
        return "programming mode, zero byte due";
    case TargetMode::awaitBaudRate:
        return "programming mode, Baud Rate Set due";
    case TargetMode::awaitReset:
        return "programming mode, Reset due";
    case TargetMode::ready:
        return "programming mode, ready";
    case TargetMode::receiving:
        return "programming mode, data frames due";
    case TargetMode::left:
        return "left programming mode";
    }
    return "?";
}

Target::Target(const TargetOptions& options, BoardTime now)
    : m_options(options), m_flash(options.flash) {
    m_options.deviceName.resize(10, ' ');
    m_inReset = m_options.invertedDtr;
    if (m_inReset) {
        enterMode(TargetMode::inReset, now, "DTR holds reset");
    } else {
        release(false, now);
    }
}

std::uint32_t Target::bitsPerSecond() const {
    return m_mode == TargetMode::running ? m_options.monitor.bitsPerSecond : m_speed;
}

void Target::setLines(bool dtr, bool breakHeld, BoardTime now) {
    const bool reset = dtr != m_options.invertedDtr;
    if (reset == m_inReset) {
        return;
    }
    m_inReset = reset;
    if (reset) {
        dropPartial("reset came before the frame ended");
        enterMode(TargetMode::inReset, now, dtr ? "DTR on" : "DTR off");
    } else {
        release(breakHeld, now);
    }
}

void Target::release(bool breakHeld, BoardTime now) {
    m_released = now;
    m_busyUntil = now;
    m_nextChatter.reset();
    if (!breakHeld) {
        if (!m_options.monitor.text.empty()) {
            m_nextChatter = now;
        }
        enterMode(TargetMode::running, now, "no BREAK as reset ended");
        return;
    }
    ++m_modeEntries;
    m_speed = kSpeeds[0];
    m_opens = now;
    m_closes = now + m_options.modeWindow;
    for (const SlowEntry& slow : m_options.slowEntries) {
        if (slow.n == 0 || slow.n == m_modeEntries) {
            m_opens = now + slow.time;
            m_closes.reset();
        }
    }
    enterMode(TargetMode::awaitPulse, now, "BREAK held as reset ended");
}

void Target::enterMode(TargetMode mode, BoardTime now, const std::string& why) {
    flushUnheard();
    m_mode = mode;
    if (mode != TargetMode::running) {
        m_nextChatter.reset();
    }
    m_events.push_back({.kind = TargetEvent::Kind::mode,
                        .begin = now,
                        .end = now,
                        .bytes = {},
                        .meaning = std::string(modeName(mode)) + " (" + why + ")"});
}

void Target::advance(BoardTime now) {
    while (m_nextChatter && *m_nextChatter <= now) {
        const BoardTime due = *m_nextChatter;
        const std::string& text = m_options.monitor.text;
        m_events.push_back({.kind = TargetEvent::Kind::chatter,
                            .begin = due,
                            .end = due,
                            .bytes = Bytes(text.begin(), text.end()),
                            .meaning = "the running program speaks",
                            .bitsPerSecond = bitsPerSecond()});
        m_nextChatter.reset();
        if (m_options.monitor.interval > BoardTime::zero()) {
            const BoardTime next = due + m_options.monitor.interval;
            // What was missed while nobody asked is not made up for.
            m_nextChatter = next > now ? next : now + m_options.monitor.interval;
        }
    }
}

std::optional<BoardTime> Target::nextDeadline() const {
    return m_nextChatter;
}

std::vector<TargetEvent> Target::takeEvents() {
    flushUnheard();
    return std::exchange(m_events, {});
}

} // namespace flashwriter::board
