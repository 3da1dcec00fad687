// What the target does for each command, and how it answers.

#include "board/Target.h"

#include <array>

namespace flashwriter::board {

namespace {

std::uint32_t addressAt(const Bytes& frame, std::size_t offset) {
    return frame[offset] | (std::uint32_t{frame[offset + 1]} << 8U) |
           (std::uint32_t{frame[offset + 2]} << 16U);
}

void putAddress(Bytes& data, std::uint32_t address) {
    for (unsigned shift = 0; shift < 24; shift += 8) {
        data.push_back(static_cast<std::uint8_t>((address >> shift) & 0xFFU));
    }
}

std::string rangeText(const Bytes& frame) {
    return addressText(addressAt(frame, 3)) + " to " + addressText(addressAt(frame, 6));
}

// What the length byte of each command has to say; 0: no such command.
std::uint8_t lengthOf(std::uint8_t command) {
    switch (static_cast<Command>(command)) {
    case Command::reset:
    case Command::securityGet:
    case Command::siliconSignature:
        return 1;
    case Command::baudRateSet:
        return 3;
    case Command::blockErase:
        return 4;
    case Command::programming:
    case Command::checksum:
        return 7;
    case Command::blockBlankCheck:
        return 8;
    }
    return 0;
}

std::uint32_t blockCount(std::uint32_t first, std::uint32_t last) {
    return (last - first + 1) / FlashMemory::kBlockSize;
}

// The supply voltages that the target runs at, in tenths of a volt.
constexpr std::uint8_t kLowestVoltage = 18;
constexpr std::uint8_t kHighestVoltage = 55;

} // namespace

void Target::dispatch(const HostFrame& frame) {
    const std::uint8_t length = lengthOf(frame.bytes[2]);
    if (length == 0) {
        refuse(frame, Status::commandNumberError, "unknown command");
        return;
    }
    if (length != frame.bytes[1]) {
        refuse(frame, Status::parameterError, "wrong number of parameters");
        return;
    }
    switch (static_cast<Command>(frame.bytes[2])) {
    case Command::reset:
        return doReset(frame);
    case Command::baudRateSet:
        return doBaudRateSet(frame);
    case Command::blockErase:
        return doErase(frame);
    case Command::blockBlankCheck:
        return doBlankCheck(frame);
    case Command::programming:
        return doProgramming(frame);
    case Command::checksum:
        return doChecksum(frame);
    case Command::securityGet:
        return doSecurityGet(frame);
    case Command::siliconSignature:
        return doSignature(frame);
    }
}

void Target::doBaudRateSet(const HostFrame& frame) {
    const std::uint8_t index = frame.bytes[3];
    const std::uint8_t voltage = frame.bytes[4];
    if (index >= std::size(kSpeeds) || voltage < kLowestVoltage || voltage > kHighestVoltage) {
        refuse(frame, Status::parameterError, "no such speed index or voltage");
        return;
    }
    accept(frame, std::to_string(kSpeeds[index]) + " bps, " + std::to_string(voltage) +
                      " tenths of a volt");
    if (m_options.baudRateReplyWithData) {
        const std::array<std::uint8_t, 3> data{static_cast<std::uint8_t>(Status::acknowledge),
                                               index, voltage};
        reply(frame.end + m_options.commandTime, data, "Baud Rate Set status ACK with its data");
    } else {
        replyStatus(frame, Status::acknowledge, BoardTime::zero());
    }
    m_speed = kSpeeds[index]; // from the next byte on; the reply still goes out at the old speed
    enterMode(TargetMode::awaitReset, m_busyUntil, "speed agreed");
}

void Target::doReset(const HostFrame& frame) {
    accept(frame, "");
    replyStatus(frame, Status::acknowledge, BoardTime::zero());
    if (m_mode != TargetMode::ready) {
        enterMode(TargetMode::ready, m_busyUntil, "Reset");
    }
}

void Target::doErase(const HostFrame& frame) {
    const std::uint32_t first = addressAt(frame.bytes, 3);
    if (!m_flash.holdsBlocks(first, first + FlashMemory::kBlockSize - 1)) {
        refuse(frame, Status::parameterError, "no block begins at " + addressText(first));
        return;
    }
    accept(frame, addressText(first));
    m_flash.eraseBlock(first);
    replyStatus(frame, Status::acknowledge, m_options.eraseTime);
}

void Target::doBlankCheck(const HostFrame& frame) {
    const std::uint32_t first = addressAt(frame.bytes, 3);
    const std::uint32_t last = addressAt(frame.bytes, 6);
    if (!m_flash.holdsBlocks(first, last) || frame.bytes[9] != 0) {
        refuse(frame, Status::parameterError, "no such blocks: " + rangeText(frame.bytes));
        return;
    }
    accept(frame, rangeText(frame.bytes));
    const Status status = m_flash.isBlank(first, last) ? Status::acknowledge : Status::notBlank;
    replyStatus(frame, status, m_options.blankCheckTime * blockCount(first, last));
}

void Target::doProgramming(const HostFrame& frame) {
    const std::uint32_t first = addressAt(frame.bytes, 3);
    const std::uint32_t last = addressAt(frame.bytes, 6);
    if (!m_flash.holdsBlocks(first, last)) {
        refuse(frame, Status::parameterError, "no such blocks: " + rangeText(frame.bytes));
        return;
    }
    accept(frame, rangeText(frame.bytes));
    replyStatus(frame, Status::acknowledge, BoardTime::zero());
    m_transfer = {.next = first, .last = last, .first = first, .clean = true, .received = {}};
    enterMode(TargetMode::receiving, m_busyUntil, "Programming");
}

void Target::takeData(const HostFrame& frame, bool last) {
    const auto data = std::span(frame.bytes).subspan(2, kDataFramePayload);
    const std::uint32_t address = m_transfer.next;
    // Not erasing first is the host's fault; a cell that does not take its byte is the board's.
    const bool erased =
        m_flash.isBlank(address, address + static_cast<std::uint32_t>(kDataFramePayload) - 1);
    const bool clean = m_flash.program(address, data);
    const std::string flaw = clean    ? ""
                             : erased ? ", not every cell took its byte"
                                      : ", onto cells that are not erased";
    m_events.push_back(
        {.kind = TargetEvent::Kind::hostFrame,
         .begin = frame.begin,
         .end = frame.end,
         .bytes = frame.bytes,
         .meaning = "data for " + addressText(address) + (last ? ", the last" : "") + flaw,
         .violation = !erased,
         .bitsPerSecond = bitsPerSecond()});
    m_transfer.clean = m_transfer.clean && clean;
    m_transfer.received.insert(m_transfer.received.end(), data.begin(), data.end());
    m_transfer.next += static_cast<std::uint32_t>(kDataFramePayload);
    replyDataStatus(frame.end + m_options.commandTime + m_options.programTime, Status::acknowledge,
                    Status::acknowledge);
    if (!last) {
        return;
    }
    const bool verified = m_transfer.clean && m_flash.holds(m_transfer.first, m_transfer.received);
    const std::array<std::uint8_t, 1> status{
        static_cast<std::uint8_t>(verified ? Status::acknowledge : Status::verifyError)};
    reply(m_busyUntil, status, "internal verify " + statusName(status[0]), m_options.frameGap);
    enterMode(TargetMode::ready, m_busyUntil, "transfer complete");
}

void Target::doChecksum(const HostFrame& frame) {
    const std::uint32_t first = addressAt(frame.bytes, 3);
    const std::uint32_t last = addressAt(frame.bytes, 6);
    if (!m_flash.holdsBlocks(first, last)) {
        refuse(frame, Status::parameterError, "no such blocks: " + rangeText(frame.bytes));
        return;
    }
    accept(frame, rangeText(frame.bytes));
    replyStatus(frame, Status::acknowledge, BoardTime::zero());
    const unsigned sum = m_flash.checksum(first, last);
    const std::array<std::uint8_t, 2> data{static_cast<std::uint8_t>(sum & 0xFFU),
                                           static_cast<std::uint8_t>(sum >> 8U)};
    const BoardTime work = m_options.checksumTime * blockCount(first, last);
    reply(m_busyUntil + work, data, "checksum " + hexText(data), m_options.frameGap);
}

void Target::doSecurityGet(const HostFrame& frame) {
    accept(frame, "");
    replyStatus(frame, Status::acknowledge, BoardTime::zero());
    reply(m_busyUntil, m_options.security, "security data", m_options.frameGap);
}

void Target::doSignature(const HostFrame& frame) {
    accept(frame, "");
    replyStatus(frame, Status::acknowledge, BoardTime::zero());
    Bytes data(m_options.deviceCode.begin(), m_options.deviceCode.end());
    data.insert(data.end(), m_options.deviceName.begin(), m_options.deviceName.end());
    putAddress(data, m_flash.codeEndAddress());
    putAddress(data, m_options.signatureDataEnd.value_or(m_flash.dataEndAddress()));
    data.insert(data.end(), m_options.version.begin(), m_options.version.end());
    reply(m_busyUntil, data, "silicon signature", m_options.frameGap);
}

void Target::accept(const HostFrame& frame, const std::string& details) {
    std::string meaning = commandName(frame.bytes[2]);
    if (!details.empty()) {
        meaning.append(" ").append(details);
    }
    m_events.push_back({.kind = TargetEvent::Kind::hostFrame,
                        .begin = frame.begin,
                        .end = frame.end,
                        .bytes = frame.bytes,
                        .meaning = meaning,
                        .bitsPerSecond = bitsPerSecond()});
}

void Target::ignore(const HostFrame& frame, const std::string& why, bool violation) {
    const bool named = frame.bytes.front() == kCommandStart && frame.bytes[1] != 0;
    const std::string name = named ? commandName(frame.bytes[2]) : "frame";
    m_events.push_back({.kind = TargetEvent::Kind::hostFrame,
                        .begin = frame.begin,
                        .end = frame.end,
                        .bytes = frame.bytes,
                        .meaning = name + " not answered: " + why,
                        .violation = violation,
                        .bitsPerSecond = bitsPerSecond()});
}

void Target::refuse(const HostFrame& frame, Status status, const std::string& why) {
    const bool named = frame.bytes.front() == kCommandStart && frame.bytes[1] != 0;
    const std::string name = named ? commandName(frame.bytes[2]) : "frame";
    m_events.push_back({.kind = TargetEvent::Kind::hostFrame,
                        .begin = frame.begin,
                        .end = frame.end,
                        .bytes = frame.bytes,
                        .meaning = name + " refused: " + why,
                        .violation = true,
                        .bitsPerSecond = bitsPerSecond()});
    // A refused data frame is answered in the form that the host waits for.
    if (m_mode == TargetMode::receiving && frame.bytes.front() == kDataStart) {
        replyDataStatus(frame.end + m_options.commandTime, status, status);
    } else {
        replyStatus(frame, status, BoardTime::zero());
    }
    if (m_mode == TargetMode::receiving) {
        enterMode(TargetMode::ready, m_busyUntil, "transfer given up");
    }
}

void Target::replyStatus(const HostFrame& frame, Status status, BoardTime work) {
    const std::array<std::uint8_t, 1> data{static_cast<std::uint8_t>(status)};
    reply(frame.end + m_options.commandTime + work, data, "status " + statusName(data[0]));
}

void Target::replyDataStatus(BoardTime begin, Status status, Status second) {
    const std::array<std::uint8_t, 2> data{static_cast<std::uint8_t>(status),
                                           static_cast<std::uint8_t>(second)};
    const std::size_t count = m_options.shortDataStatus ? 1 : 2;
    reply(begin, std::span(data).first(count), "data status " + statusName(data[0]));
}

void Target::reply(BoardTime begin, std::span<const std::uint8_t> data, const std::string& meaning,
                   BoardTime pause) {
    m_busyUntil = begin + pause;
    m_events.push_back({.kind = TargetEvent::Kind::reply,
                        .begin = m_busyUntil,
                        .end = m_busyUntil,
                        .pause = pause,
                        .bytes = makeReply(data),
                        .meaning = meaning,
                        .bitsPerSecond = m_speed});
}

} // namespace flashwriter::board
