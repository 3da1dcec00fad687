#include "tests/fuzz/FrameOperations.h"

#include "tests/fuzz/FrameModel.h"
#include "tests/fuzz/Require.h"

#include <algorithm>
#include <array>
#include <functional>

namespace flashwriter::fuzz {

namespace {

constexpr std::uint8_t UNTOUCHED = 0xA5;

using Outputs = std::array<std::uint8_t, 26>;
using Check = std::function<ResultCode(const NSCommandProcessor&, Outputs&)>;

// A check, what it wants, and how many bytes of the payload, from the first on, its outputs are.
struct Checked {
    FrameWant want;
    Check check;
    std::size_t handedOut;
};

Checked status(ResultCode (NSCommandProcessor::*check)(std::uint8_t&) const) {
    return {{1, Judging::FormatFirst},
            [check](const NSCommandProcessor& codec, Outputs& to) { return (codec.*check)(to[0]); },
            1};
}

std::vector<Checked> statusChecks() {
    using Codec = NSCommandProcessor;
    return {status(&Codec::checkStatus),
            status(&Codec::CheckStatus),
            status(&Codec::CheckResetStatus),
            status(&Codec::CheckBlockEraseStatus),
            status(&Codec::CheckBlockBlankCheckStatus),
            status(&Codec::CheckSecurityGetCommand),
            status(&Codec::CheckSiliconSignatureStatus),
            status(&Codec::CheckProgrammingStatus),
            status(&Codec::CheckProgrammingDataFrameStatus),
            status(&Codec::CheckVerifyStatus),
            status(&Codec::CheckChecksumStatus)};
}

// The signature's outputs lie apart here, and show that only a zero is stored behind the name.
constexpr std::size_t NAME = 3;
constexpr std::size_t BEHIND_NAME = 12;

Checked signature() {
    return {{22, Judging::LengthLast},
            [](const NSCommandProcessor& codec, Outputs& to) {
                const ResultCode result = codec.CheckSiliconSignatureDataFrames(
                    &to[0], &to[NAME], &to[NAME + BEHIND_NAME], &to[18], &to[21]);
                if (result == RESULT_OK) {
                    require(to[NAME + 10] == UNTOUCHED && to[NAME + 11] == 0, "end of the name");
                    // From here on as one list in the frame's order.
                    std::rotate(to.begin() + 13, to.begin() + 15, to.end());
                    to[24] = to[25] = UNTOUCHED;
                }
                return result;
            },
            22};
}

std::vector<Checked> allChecks() {
    using Codec = NSCommandProcessor;
    std::vector<Checked> checks = statusChecks();
    checks.push_back(
        {{2, Judging::FormatFirst},
         [](const Codec& codec, Outputs& to) { return codec.checkDataFrame(to[0], to[1]); },
         2});
    checks.push_back({{2, Judging::FormatFirst},
                      [](const Codec& codec, Outputs& to) {
                          return codec.CheckProgrammingDataFrameStatus(to[0], to[1]);
                      },
                      2});
    checks.push_back({{3, Judging::SumFirst},
                      [](const Codec& codec, Outputs& to) {
                          return codec.CheckBaudRateStatus(to[0], to[1], to[2]);
                      },
                      3});
    checks.push_back({{8, Judging::LengthLast},
                      [](const Codec& codec, Outputs& to) {
                          return codec.CheckSecurityGetDataFrame(to[0], to[1], to[2], to[3], to[4],
                                                                 to[5]);
                      },
                      6});
    checks.push_back(
        {{2, Judging::LengthLast},
         [](const Codec& codec, Outputs& to) { return codec.CheckChecksumDataFrams(to[0], to[1]); },
         2});
    checks.push_back(signature());
    return checks;
}

} // namespace

void runChecks(const NSCommandProcessor& codec) {
    static const std::vector<Checked> checks = allChecks();
    const Bytes frame(codec.GetDataFrames(), codec.GetDataFrames() + FRAME_BUFFER_SIZE);
    for (const Checked& checked : checks) {
        Outputs outputs{};
        outputs.fill(UNTOUCHED);
        Outputs expected = outputs;
        const ResultCode judgement = judge(frame, checked.want);
        if (judgement == RESULT_OK) {
            std::copy_n(frame.begin() + 2, checked.handedOut, expected.begin());
        }
        require(checked.check(codec, outputs) == judgement, "the judgement of a frame");
        require(outputs == expected, "outputs are a good frame's bytes, or as they were");
    }
    require(std::equal(frame.begin(), frame.end(), codec.GetDataFrames()), "a check only reads");
}

} // namespace flashwriter::fuzz
