// The codec of the programming protocol, with any bytes as a received frame and as what is sent.
//
// Input: one byte of switches, one that stands where the frame does not reach, then the frame.
#include "protocol/NSCommandProcessor.h"
#include "tests/fuzz/FrameModel.h"
#include "tests/fuzz/FrameOperations.h"
#include "tests/fuzz/Require.h"

#include <algorithm>

namespace flashwriter::fuzz {
namespace {

constexpr std::uint8_t MENDS_SUM = 0x01; // few invented frames have a right one
constexpr std::uint8_t IS_FINAL = 0x02;

void run(const Bytes& input) {
    NSCommandProcessor codec;
    require(codec.Initialize() == RESULT_OK, "there is memory for two frames");
    const std::uint8_t switches = input[0];
    const Bytes frame(input.begin() + 2, input.end());
    std::uint8_t* received = codec.GetDataFrames();
    std::fill_n(received, FRAME_BUFFER_SIZE, input[1]);
    std::copy_n(frame.begin(), std::min(frame.size(), FRAME_BUFFER_SIZE), received);
    if ((switches & MENDS_SUM) != 0) {
        mendSum(received);
    }
    runChecks(codec);

    Bytes parameters = frame;
    parameters.resize(8, input[1]);
    makeCommands(codec, parameters);
    const bool isFinal = (switches & IS_FINAL) != 0;
    makeDataFrames(codec, frame, isFinal ? switches : std::uint64_t{switches} * 256);
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size >= 2) {
        flashwriter::fuzz::run({bytes, bytes + size});
    }
    return 0;
}
