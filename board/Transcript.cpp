#include "board/Transcript.h"

#include <cstdio>

namespace flashwriter::board {

namespace {

char direction(TranscriptRecord::Kind kind) {
    switch (kind) {
    case TranscriptRecord::Kind::hostFrame:
    case TranscriptRecord::Kind::unheard:
        return '>';
    case TranscriptRecord::Kind::reply:
    case TranscriptRecord::Kind::chatter:
        return '<';
    case TranscriptRecord::Kind::mode:
    case TranscriptRecord::Kind::line:
    case TranscriptRecord::Kind::fault:
        break;
    }
    return '-';
}

bool isData(const TranscriptRecord& record) {
    return record.kind == TranscriptRecord::Kind::hostFrame && !record.bytes.empty() &&
           record.bytes.front() == kDataStart;
}

} // namespace

std::string transcriptLine(const TranscriptRecord& record) {
    constexpr std::int64_t kMicroseconds = 1000000;
    const char way = direction(record.kind);
    // The moment at which the host saw it, or let it be seen.
    const std::int64_t moment = (way == '<' ? record.due : record.begin) + record.realTimeOffset;
    char head[48];
    static_cast<void>(std::snprintf(head, sizeof head, "%lld.%06lld %c ",
                                    static_cast<long long>(moment / kMicroseconds),
                                    static_cast<long long>(moment % kMicroseconds), way));
    std::string line = head;
    if (way != '-') {
        line.append("[").append(hexText(record.bytes)).append("] ");
    }
    if (record.violation) {
        line += "VIOLATION: ";
    }
    line += record.meaning;
    if (record.hostSpeed != 0 && record.hostSpeed != record.boardSpeed) {
        line += " (host at " + std::to_string(record.hostSpeed) + " bps, board at " +
                std::to_string(record.boardSpeed) + " bps)";
    }
    return line;
}

std::string transcriptText(const Transcript& transcript) {
    std::string text;
    for (const TranscriptRecord& record : transcript) {
        text += transcriptLine(record) + '\n';
    }
    return text;
}

std::vector<std::int64_t> hostOverheads(const Transcript& transcript) {
    std::vector<std::int64_t> overheads;
    const TranscriptRecord* frame = nullptr; // the last host frame
    const TranscriptRecord* reply = nullptr; // what answered it, if anything has yet
    for (const TranscriptRecord& record : transcript) {
        if (record.kind == TranscriptRecord::Kind::reply) {
            reply = &record;
        } else if (record.kind == TranscriptRecord::Kind::hostFrame) {
            if (isData(record) && frame != nullptr && isData(*frame) && reply != nullptr) {
                overheads.push_back(record.begin - reply->due);
            }
            frame = &record;
            reply = nullptr;
        }
    }
    return overheads;
}

} // namespace flashwriter::board
