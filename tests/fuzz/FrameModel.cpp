#include "tests/fuzz/FrameModel.h"

#include <numeric>

namespace flashwriter::fuzz {

namespace {

// Whether the bytes from LEN up to this SUM come to a multiple of 256 with it.
bool addsUp(const Bytes& frame, std::size_t length, std::uint8_t sum) {
    const auto from = frame.begin() + 1;
    return std::accumulate(from, from + 1 + static_cast<std::ptrdiff_t>(length), unsigned{sum}) %
               256 ==
           0;
}

} // namespace

ResultCode judge(const Bytes& frame, const FrameWant& want) {
    const std::size_t told = frame[1];
    // Only where LEN is judged last do SUM and end byte stand where it puts them.
    const std::size_t place = want.judging == Judging::LengthLast ? told : want.length;
    const bool begins = frame[0] == 2;
    const bool ends = frame[place + 3] == 3;
    const bool hasLength = told == want.length;
    const bool hasSum = addsUp(frame, told, frame[place + 2]);
    if (want.judging == Judging::SumFirst && !hasSum) {
        return RESULT_SUM_ERROR;
    }
    if (!begins || !ends || (want.judging != Judging::LengthLast && !hasLength)) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    if (!hasSum) {
        return RESULT_SUM_ERROR;
    }
    return hasLength ? RESULT_OK : RESULT_FRAME_FORMAT_ERROR;
}

Bytes builtFrame(std::uint8_t startByte, const Bytes& payload, std::uint8_t endByte) {
    Bytes frame{startByte, static_cast<std::uint8_t>(payload.size())};
    frame.insert(frame.end(), payload.begin(), payload.end());
    std::uint8_t sum = 0;
    while (!addsUp(frame, payload.size(), sum)) {
        ++sum;
    }
    frame.push_back(sum);
    frame.push_back(endByte);
    return frame;
}

void mendSum(std::uint8_t* frame) {
    const std::size_t length = frame[1];
    const Bytes counted(frame, frame + 2 + length);
    std::uint8_t& sum = frame[length + 2];
    sum = 0;
    while (!addsUp(counted, length, sum)) {
        ++sum;
    }
}

} // namespace flashwriter::fuzz
