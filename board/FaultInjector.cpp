#include "board/FaultInjector.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace flashwriter::board {

namespace {

// The data bytes of a frame that has not lost its shape yet.
Bytes dataOf(const Bytes& frame) {
    if (frame.size() <= kFrameOverhead) {
        return {};
    }
    return {frame.begin() + 2, frame.end() - 2};
}

Bytes resize(const Bytes& frame, std::int64_t size) {
    constexpr std::int64_t kOverhead = kFrameOverhead;
    const std::int64_t count = std::clamp<std::int64_t>(size - kOverhead, 1, kDataFramePayload);
    Bytes data = dataOf(frame);
    data.resize(static_cast<std::size_t>(count), static_cast<std::uint8_t>(Status::acknowledge));
    return makeReply(data);
}

Bytes replaceStatus(const Bytes& frame, std::int64_t status) {
    Bytes data = dataOf(frame);
    if (data.empty()) {
        return frame;
    }
    data[0] = static_cast<std::uint8_t>(status & 0xFF);
    return makeReply(data);
}

void addTo(std::uint8_t& byte, std::int64_t amount) {
    byte = static_cast<std::uint8_t>((byte + amount) & 0xFF);
}

// Bytes that cannot be taken for the start of a frame.
Bytes noise(std::int64_t count) {
    Bytes bytes;
    for (std::int64_t i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(0xF0 | (i & 0x0F)));
    }
    return bytes;
}

void spoilShape(const Fault& fault, Bytes& bytes) {
    switch (fault.kind) {
    case FaultKind::resized:
        bytes = resize(bytes, fault.parameterOr(6));
        break;
    case FaultKind::status:
        bytes = replaceStatus(bytes, fault.parameterOr(0x15));
        break;
    case FaultKind::truncated:
        bytes.resize(bytes.size() -
                     std::min(bytes.size(), static_cast<std::size_t>(fault.parameterOr(1))));
        break;
    case FaultKind::doubled: {
        const Bytes once = bytes;
        bytes.insert(bytes.end(), once.begin(), once.end());
        break;
    }
    case FaultKind::noiseBefore: {
        const Bytes extra = noise(fault.parameterOr(3));
        bytes.insert(bytes.begin(), extra.begin(), extra.end());
        break;
    }
    case FaultKind::noiseAfter: {
        const Bytes extra = noise(fault.parameterOr(3));
        bytes.insert(bytes.end(), extra.begin(), extra.end());
        break;
    }
    default:
        break;
    }
}

// The faults that change single bytes of a frame that has some.
void spoilByte(const Fault& fault, Bytes& bytes) {
    if (bytes.size() < kFrameOverhead) {
        return;
    }
    switch (fault.kind) {
    case FaultKind::wrongSum:
        addTo(bytes[bytes.size() - 2], fault.parameterOr(1));
        break;
    case FaultKind::wrongLength:
        addTo(bytes[1], fault.parameterOr(1));
        break;
    case FaultKind::wrongStart:
        bytes.front() = static_cast<std::uint8_t>(fault.parameterOr(0x15) & 0xFF);
        break;
    case FaultKind::wrongEnd:
        bytes.back() = static_cast<std::uint8_t>(fault.parameterOr(kMoreFollows) & 0xFF);
        break;
    default:
        break;
    }
}

bool concernsReplies(FaultKind kind) {
    return kind <= FaultKind::unplugReply;
}

} // namespace

FaultInjector::FaultInjector(std::vector<Fault> faults) : m_faults(std::move(faults)) {}

SpoiltReply FaultInjector::spoil(const Bytes& reply) {
    ++m_replies;
    SpoiltReply spoilt{.bytes = reply, .delay = {}, .unplugAfter = {}, .note = {}};
    bool silent = false;
    for (const Fault& fault : m_faults) {
        if (!concernsReplies(fault.kind) || !fault.hits(fault.kind, m_replies)) {
            continue;
        }
        spoilt.note += (spoilt.note.empty() ? "" : ", ") + std::string(faultName(fault.kind));
        silent = silent || fault.kind == FaultKind::silence;
        if (fault.kind == FaultKind::delay) {
            spoilt.delay += std::chrono::milliseconds(fault.parameterOr(100));
        } else if (fault.kind == FaultKind::unplugReply) {
            spoilt.unplugAfter = static_cast<std::size_t>(fault.parameterOr(2));
        }
        spoilShape(fault, spoilt.bytes);
        spoilByte(fault, spoilt.bytes);
    }
    if (silent) {
        spoilt.bytes.clear();
    }
    return spoilt;
}

const Fault* FaultInjector::find(FaultKind kind, std::uint32_t index) const {
    const auto found =
        std::find_if(m_faults.begin(), m_faults.end(),
                     [kind, index](const Fault& fault) { return fault.hits(kind, index); });
    return found == m_faults.end() ? nullptr : &*found;
}

} // namespace flashwriter::board
