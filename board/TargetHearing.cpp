// How the target listens: bytes to frames, and which of them it takes notice of.

#include "board/Target.h"

#include <utility>

namespace flashwriter::board {

bool Target::listens() const {
    return m_mode != TargetMode::inReset && m_mode != TargetMode::running &&
           m_mode != TargetMode::left;
}

void Target::receive(const WireByte& byte) {
    switch (byte.reception) {
    case Reception::clean:
        break;
    case Reception::wrongSpeed:
        dropPartial("noise cut the frame short");
        noteUnheard(byte, "noise: sent at another speed than the board's", false);
        return;
    case Reception::inBreak:
        dropPartial("BREAK cut the frame short");
        noteUnheard(byte, "lost: sent during BREAK", listens());
        return;
    case Reception::collision:
        dropPartial("a collision cut the frame short");
        noteUnheard(byte, "lost: sent while the board was sending", listens());
        return;
    }
    if (!listens()) {
        noteUnheard(byte, std::string("not listened to: ") + modeName(m_mode), false);
        return;
    }
    hear(byte);
}

void Target::hear(const WireByte& byte) {
    if (byte.begin < m_busyUntil) {
        dropPartial("the board became busy before the frame ended");
        noteUnheard(byte, "lost: sent while the board was busy", true);
        return;
    }
    if (!m_receiver.empty() && byte.begin - m_receiver.partial().end > m_options.interByteLimit) {
        dropPartial("the frame was never completed");
    }
    if (m_receiver.empty() && isPulse(byte)) {
        noteUnheard(byte,
                    m_mode == TargetMode::awaitPulse ? "mode-setting zero byte"
                                                     : "a second mode-setting zero byte",
                    m_mode != TargetMode::awaitPulse);
        if (m_mode == TargetMode::awaitPulse) {
            enterMode(TargetMode::awaitBaudRate, byte.end, "zero byte");
        }
        return;
    }
    if (m_receiver.empty() && !FrameReceiver::beginsFrame(byte.value)) {
        noteUnheard(byte, "no frame begins like this", true);
        return;
    }
    hearInFrame(byte);
}

bool Target::isPulse(const WireByte& byte) const {
    return byte.value == 0 &&
           (m_mode == TargetMode::awaitPulse || m_mode == TargetMode::awaitBaudRate);
}

void Target::hearInFrame(const WireByte& byte) {
    if (m_receiver.empty()) {
        ++m_framesBegun;
        m_bytesOfLastFrame = 0;
    }
    ++m_bytesOfLastFrame;
    if (const auto frame = m_receiver.take(byte)) {
        flushUnheard();
        onFrame(*frame);
    }
}

void Target::noteUnheard(const WireByte& byte, const std::string& why, bool violation) {
    if (m_unheard && m_unheard->meaning != why) {
        flushUnheard();
    }
    if (!m_unheard) {
        m_unheard = TargetEvent{.kind = TargetEvent::Kind::unheard,
                                .begin = byte.begin,
                                .end = byte.end,
                                .bytes = {},
                                .meaning = why,
                                .violation = violation,
                                .bitsPerSecond = bitsPerSecond()};
    }
    m_unheard->bytes.push_back(byte.value);
    m_unheard->end = byte.end;
}

void Target::dropPartial(const std::string& why) {
    if (m_receiver.empty()) {
        return;
    }
    flushUnheard();
    HostFrame frame = m_receiver.discard();
    m_events.push_back({.kind = TargetEvent::Kind::unheard,
                        .begin = frame.begin,
                        .end = frame.end,
                        .bytes = std::move(frame.bytes),
                        .meaning = "cut short: " + why,
                        .violation = true,
                        .bitsPerSecond = bitsPerSecond()});
}

void Target::flushUnheard() {
    if (m_unheard) {
        m_events.push_back(*std::exchange(m_unheard, std::nullopt));
    }
}

void Target::onFrame(const HostFrame& frame) {
    if (m_mode == TargetMode::awaitPulse || m_mode == TargetMode::awaitBaudRate) {
        onEntryFrame(frame);
        return;
    }
    const FrameFlaw flaw = findFlaw(frame.bytes);
    if (flaw == FrameFlaw::endByte) {
        refuse(frame, Status::negativeAcknowledge, "the end byte is not where the length puts it");
    } else if (flaw == FrameFlaw::checksum) {
        refuse(frame, Status::checksumError, "wrong checksum");
    } else if (frame.bytes.front() == kDataStart) {
        onDataFrame(frame);
    } else {
        onCommandFrame(frame);
    }
}

// Before the speed is agreed only a whole and timely Baud Rate Set is answered: the target cannot
// know that anything else was meant for it.
void Target::onEntryFrame(const HostFrame& frame) {
    const bool whole = frame.bytes.front() == kCommandStart &&
                       findFlaw(frame.bytes) == FrameFlaw::none && frame.bytes.size() >= 5;
    if (m_closes && frame.begin > *m_closes) {
        ignore(frame, "too late after the release of reset", false);
        enterMode(TargetMode::left, frame.end, "nobody spoke in time");
    } else if (frame.begin < m_opens) {
        ignore(frame, "the board does not listen yet", false);
    } else if (!whole) {
        ignore(frame, "malformed", true);
    } else if (frame.bytes[2] != static_cast<std::uint8_t>(Command::baudRateSet)) {
        ignore(frame, "Baud Rate Set has to come first", true);
    } else if (m_mode == TargetMode::awaitPulse) {
        ignore(frame, "no zero byte came before it", true);
    } else {
        onCommandFrame(frame);
    }
}

void Target::onCommandFrame(const HostFrame& frame) {
    if (frame.bytes[1] == 0) {
        refuse(frame, Status::parameterError, "a command frame without a command");
        return;
    }
    const auto command = static_cast<Command>(frame.bytes[2]);
    const bool isFirst = m_mode == TargetMode::awaitBaudRate;
    const bool late = m_closes && frame.begin > *m_closes;
    if (command == Command::baudRateSet && m_mode == TargetMode::awaitReset && late) {
        // A host that missed the answer asks again, and hears nothing, as from a board that left.
        ignore(frame, "too late after the release of reset", false);
    } else if ((command == Command::baudRateSet) != isFirst) {
        refuse(frame, Status::commandNumberError, "Baud Rate Set is due once, after mode entry");
    } else if (m_mode == TargetMode::awaitReset && command != Command::reset) {
        refuse(frame, Status::commandNumberError, "Reset has to come first");
    } else if (m_mode == TargetMode::receiving && !m_transfer.received.empty()) {
        refuse(frame, Status::commandNumberError, "a data frame is due");
    } else {
        dispatch(frame);
    }
}

void Target::onDataFrame(const HostFrame& frame) {
    const bool last = frame.bytes.back() == kLast;
    if (m_mode != TargetMode::receiving) {
        refuse(frame, Status::negativeAcknowledge, "no data frame is due");
    } else if (frame.bytes.size() != kDataFramePayload + kFrameOverhead) {
        refuse(frame, Status::parameterError, "a data frame carries 256 bytes");
    } else if (last != (m_transfer.next + kDataFramePayload == m_transfer.last + 1)) {
        refuse(frame, Status::negativeAcknowledge,
               last ? "called the last before the range is full"
                    : "the range's last is not so called");
    } else {
        takeData(frame, last);
    }
}

} // namespace flashwriter::board
