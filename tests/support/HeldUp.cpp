#include "tests/support/HeldUp.h"

#include <iostream>

namespace flashwriter::board {

namespace {

// Microseconds. A program's next frame comes a few milliseconds after an answer; the shortest time
// that a program waits for an answer and a board for the program is 100 ms.
constexpr std::int64_t LONG = 80000;

// What a program has to follow up soon: an answer, and the release of reset.
bool callsForMore(const TranscriptRecord& record) {
    return record.kind == TranscriptRecord::Kind::reply ||
           record.meaning.find("zero byte due") != std::string::npos;
}

bool isOfHost(const TranscriptRecord& record) {
    return record.kind == TranscriptRecord::Kind::hostFrame ||
           record.kind == TranscriptRecord::Kind::unheard ||
           record.kind == TranscriptRecord::Kind::line;
}

} // namespace

bool wasHeldUp(const Transcript& transcript, std::size_t from) {
    const TranscriptRecord* last = nullptr;
    for (std::size_t i = from; i < transcript.size(); ++i) {
        const TranscriptRecord& record = transcript[i];
        if (callsForMore(record)) {
            last = &record;
        } else if (last != nullptr && isOfHost(record)) {
            if (record.begin - last->due > LONG) {
                return true;
            }
            // From the release of reset on the board waits for the second message, not for the next
            // change of a line.
            last = last->kind == TranscriptRecord::Kind::reply ? nullptr : last;
        }
    }
    return false;
}

bool isMadeAnew(const Transcript& transcript) {
    static bool isFirst = true;
    if (!isFirst || !wasHeldUp(transcript, 0)) {
        return false;
    }
    isFirst = false;
    std::cout << "A write is made anew because the machine was held up.\n";
    return true;
}

} // namespace flashwriter::board
