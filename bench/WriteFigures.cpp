#include "bench/WriteFigures.h"

#include <algorithm>

namespace flashwriter::bench {

namespace {

using Kind = board::TranscriptRecord::Kind;

constexpr double BITS_PER_BYTE = 11.0;
constexpr std::uint8_t DATA_FRAME_START = 0x02;
constexpr std::int64_t MICROSECONDS_PER_MILLISECOND = 1000;
constexpr std::int64_t PAUSE_TICKS = 2; // a wait of 1 ms ends at the first reading above 1

bool isDataFrame(const board::TranscriptRecord& record) {
    return record.kind == Kind::hostFrame && !record.bytes.empty() &&
           record.bytes.front() == DATA_FRAME_START;
}

std::int64_t endOfPause(std::int64_t realTime) {
    return (realTime / MICROSECONDS_PER_MILLISECOND + PAUSE_TICKS) * MICROSECONDS_PER_MILLISECOND;
}

} // namespace

double wireSeconds(const board::Transcript& transcript) {
    double seconds = 0.0;
    for (const board::TranscriptRecord& record : transcript) {
        const bool isFrame = record.kind == Kind::hostFrame || record.kind == Kind::reply;
        if (isFrame && record.boardSpeed != 0) {
            seconds += static_cast<double>(record.bytes.size()) * BITS_PER_BYTE / record.boardSpeed;
        }
    }
    return seconds;
}

std::vector<std::int64_t> overheadsAbovePause(const board::Transcript& transcript) {
    std::vector<std::int64_t> overheads;
    const board::TranscriptRecord* lastReply = nullptr;
    bool inTransfer = false;
    for (const board::TranscriptRecord& record : transcript) {
        if (record.kind == Kind::reply) {
            lastReply = &record;
        } else if (record.kind == Kind::hostFrame) {
            if (isDataFrame(record) && inTransfer && lastReply != nullptr) {
                overheads.push_back(record.begin + record.realTimeOffset -
                                    endOfPause(lastReply->due + lastReply->realTimeOffset));
            }
            inTransfer = isDataFrame(record);
        }
    }
    return overheads;
}

std::int64_t percentile(std::vector<std::int64_t> values, unsigned percent) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    return values[(values.size() - 1) * percent / 100];
}

} // namespace flashwriter::bench
