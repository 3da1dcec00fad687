#include "tests/fuzz/FrameOperations.h"

#include "tests/fuzz/FrameModel.h"
#include "tests/fuzz/Require.h"

#include <algorithm>
#include <functional>

namespace flashwriter::fuzz {

namespace {

constexpr std::uint8_t STALE = 0xA5;

using Make = std::function<ResultCode(NSCommandProcessor&, std::uint64_t&)>;

void expectSent(NSCommandProcessor& codec, const Make& make, Bytes expected) {
    std::fill_n(codec.GetCommandFrames(), FRAME_BUFFER_SIZE, STALE);
    std::uint64_t length = 99;
    const ResultCode result = make(codec, length);
    require(result == (expected.empty() ? RESULT_PARAMETER_ERROR : RESULT_OK), "result of a Make");
    require(length == expected.size(), "length of a frame that is built");
    expected.resize(FRAME_BUFFER_SIZE, 0);
    require(std::equal(expected.begin(), expected.end(), codec.GetCommandFrames()),
            "bytes of a frame that is built, and zeros behind it");
}

} // namespace

void makeCommands(NSCommandProcessor& codec, const Bytes& p) {
    const auto command = [](Bytes payload) { return builtFrame(0x01, payload, 0x03); };
    const auto make = [&codec](const Make& operation, const Bytes& expected) {
        expectSent(codec, operation, expected);
    };
    make([](auto& c, auto& n) { return c.MakeResetCommand(n); }, command({0x00}));
    make([](auto& c, auto& n) { return c.MakeSecurityGetCommand(n); }, command({0xA1}));
    make([](auto& c, auto& n) { return c.MakeSiliconSignatureCommand(n); }, command({0xC0}));
    make([&](auto& c, auto& n) { return c.MakeBaudRateCommand(p[0], p[1], n); },
         p[0] > 3 ? Bytes{} : command({0x9A, p[0], p[1]}));
    make([&](auto& c, auto& n) { return c.MakeBlockEraseCommand(p[0], p[1], p[2], n); },
         command({0x22, p[0], p[1], p[2]}));
    make(
        [&](auto& c, auto& n) {
            return c.MakeBlockBlankCheckCommand(p[0], p[1], p[2], p[3], p[4], p[5], p[6], n);
        },
        command({0x32, p[0], p[1], p[2], p[3], p[4], p[5], p[6]}));
    make(
        [&](auto& c, auto& n) {
            return c.makeAddressRangeCommand(p[7], p[0], p[1], p[2], p[3], p[4], p[5], n);
        },
        command({p[7], p[0], p[1], p[2], p[3], p[4], p[5]}));
    make([&](auto& c,
             auto& n) { return c.MakeProgrammingCommand(p[0], p[1], p[2], p[3], p[4], p[5], n); },
         command({0x40, p[0], p[1], p[2], p[3], p[4], p[5]}));
    make([&](auto& c,
             auto& n) { return c.MakeChecksumCommand(p[0], p[1], p[2], p[3], p[4], p[5], n); },
         command({0xB0, p[0], p[1], p[2], p[3], p[4], p[5]}));
}

void makeDataFrames(NSCommandProcessor& codec, const Bytes& data, std::uint64_t finalFrame) {
    const auto frame = [&data](bool isFinal) {
        return data.size() > 256 ? Bytes{} : builtFrame(0x02, data, isFinal ? 0x03 : 0x17);
    };
    expectSent(
        codec,
        [&](auto& c, auto& length) {
            return c.makeDataFrame(data.data(), data.size(), finalFrame != 0, length);
        },
        frame(finalFrame != 0));
    expectSent(
        codec,
        [&](auto& c, auto& length) {
            return c.MakeProgrammingDataFrame(data.data(), data.size(), finalFrame, length);
        },
        frame(finalFrame % 256 != 0));
}

} // namespace flashwriter::fuzz
