#include "tests/random/Scenario.h"

#include <algorithm>
#include <iterator>

namespace flashwriter::random {

namespace {

using board::Fault;
using board::FaultKind;
using std::chrono::microseconds;
using std::chrono::milliseconds;

board::FlashOptions drawFlash(Dice& dice, const RandomFile& file) {
    board::FlashOptions flash;
    constexpr std::uint32_t SIZES[] = {16, 32, 64, 256};
    flash.codeKib = dice.pick(SIZES);
    flash.dataKib = dice.pick(std::array<std::uint32_t, 3>{0, 4, 8});
    switch (dice.below(4)) {
    case 0: // blank
        break;
    case 1:
        flash.fill = dice.byte();
        break;
    case 2:
        flash.seed = dice.below(1000);
        break;
    default: // blank behind what an earlier, shorter write of the same image left
        const auto end =
            file.image.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(
                                     file.image.size(), dice.below(flash.codeKib * 1024)));
        flash.codeContents.assign(file.image.begin(), end);
        break;
    }
    return flash;
}

void drawSignature(Dice& dice, board::TargetOptions& target) {
    std::ranges::generate(target.deviceCode, [&dice] { return dice.byte(); });
    std::ranges::generate(target.version, [&dice] { return dice.byte(); });
    const std::uint32_t letters = dice.below(11);
    target.deviceName.assign(letters, static_cast<char>(dice.between('A', 'Z')));
    if (dice.once(8)) {
        target.signatureDataEnd = dice.below(1U << 24);
    }
}

// Times that the program's time-outs allow, the wire's included.
void drawTimes(Dice& dice, board::TargetOptions& target) {
    const auto time = [&dice](std::uint32_t most) {
        return dice.once(3) ? microseconds(0) : microseconds(dice.below(most + 1));
    };
    target.commandTime = time(20'000);
    target.blankCheckTime = time(40'000);
    target.eraseTime = time(200'000);
    target.programTime = time(100'000);
    target.checksumTime = time(1'000);
    target.frameGap = time(5'000);
}

board::TargetOptions drawTarget(Dice& dice, const RandomFile& file) {
    board::TargetOptions target;
    target.flash = drawFlash(dice, file);
    drawSignature(dice, target);
    drawTimes(dice, target);
    target.invertedDtr = dice.once(4);
    target.baudRateReplyWithData = dice.once(3);
    target.shortDataStatus = dice.once(3);
    if (dice.once(5)) {
        target.monitor.text = "ready\r\n";
        target.monitor.interval = milliseconds(dice.between(1, 50));
        target.monitor.bitsPerSecond = dice.once(2) ? 115200 : 9600;
    }
    return target;
}

std::int64_t drawParameter(Dice& dice, FaultKind kind) {
    constexpr std::uint8_t STATUSES[] = {0x06, 0x06, 0x1B, 0x15, 0x00};
    switch (kind) {
    case FaultKind::delay:
    case FaultKind::slowEntry:
        return dice.between(1, 600);
    case FaultKind::status:
        return dice.once(4) ? dice.byte() : dice.pick(STATUSES);
    case FaultKind::resized:
        return dice.between(5, 26);
    case FaultKind::truncated:
    case FaultKind::unplugReply:
        return dice.below(7);
    case FaultKind::noiseBefore:
    case FaultKind::noiseAfter:
    case FaultKind::unplugFrame:
        return dice.between(1, 30);
    case FaultKind::failGet:
    case FaultKind::failSet:
    case FaultKind::failBreak:
        return Fault::kDefault;
    default: // a byte, what is added to one, or the room that a stuck adapter has
        return dice.between(0, 255);
    }
}

constexpr FaultKind KINDS[] = {
    FaultKind::silence,     FaultKind::delay,       FaultKind::wrongSum,    FaultKind::wrongLength,
    FaultKind::wrongStart,  FaultKind::wrongEnd,    FaultKind::truncated,   FaultKind::doubled,
    FaultKind::resized,     FaultKind::status,      FaultKind::noiseBefore, FaultKind::noiseAfter,
    FaultKind::unplugReply, FaultKind::unplugFrame, FaultKind::stuck,       FaultKind::slowEntry,
    FaultKind::failGet,     FaultKind::failSet,     FaultKind::failBreak,
};

bool countsFrames(FaultKind kind) {
    return kind < FaultKind::slowEntry;
}

// Somewhere in the frames of the write; entries and requests for the lines are few.
Fault drawFault(Dice& dice, std::uint32_t frames) {
    Fault fault;
    // What lies, is late or is silent leads furthest.
    constexpr FaultKind SUBTLE[] = {FaultKind::silence, FaultKind::delay, FaultKind::doubled,
                                    FaultKind::status};
    fault.kind = dice.once(2) ? dice.pick(SUBTLE) : dice.pick(KINDS);
    fault.n = dice.once(30) ? 0 : dice.between(1, countsFrames(fault.kind) ? frames + 2 : 4);
    fault.parameter = dice.once(4) ? Fault::kDefault : drawParameter(dice, fault.kind);
    return fault;
}

simulation::ClockOptions drawClock(Dice& dice, std::uint32_t frames) {
    simulation::ClockOptions clock;
    clock.step = microseconds(dice.once(10) ? 500 : dice.between(20, 100));
    clock.variation = microseconds(dice.once(3) ? 0 : dice.between(1, 80));
    clock.seed = dice.below(1000);
    if (dice.once(12)) {
        for (std::uint32_t jumps = dice.between(1, 3); jumps > 0; --jumps) {
            constexpr int SPANS[] = {50, 200, 3'600'000, 86'400'000};
            const int span = dice.pick(SPANS);
            clock.jumps.push_back({dice.below(frames + 2), dice.below(dice.once(2) ? 30 : 2000),
                                   milliseconds(dice.once(2) ? span : -span)});
        }
    }
    return clock;
}

} // namespace

bool Scenario::undisturbed() const {
    return board.faults.empty() && clock.jumps.empty();
}

std::string Scenario::description() const {
    const board::TargetOptions& target = board.target;
    std::string text =
        file.name + " of " + std::to_string(file.contents.size()) + " bytes, image " +
        std::to_string(file.image.size()) + (file.hasData ? " and data" : "") + ", speed " +
        std::to_string(baudRate) + ", flash " + std::to_string(target.flash.codeKib) + " KiB" +
        (target.invertedDtr ? ", inverted DTR" : "") +
        (target.shortDataStatus ? ", short data status" : "") + (board.pace ? "" : ", no pace") +
        ", step " + std::to_string(clock.step.count()) + " to " +
        std::to_string((clock.step + clock.variation).count()) + " ns";
    if (target.flash.stuckAddress) {
        text += ", stuck cell " + std::to_string(*target.flash.stuckAddress);
    }
    for (const Fault& fault : board.faults) {
        text += std::string(", fault ") + board::faultName(fault.kind) + ":" +
                std::to_string(fault.parameter) + "@" + std::to_string(fault.n);
    }
    for (const simulation::ClockJump& jump : clock.jumps) {
        text += ", clock by " + std::to_string(jump.by.count()) + " ms after write " +
                std::to_string(jump.write) + " and " + std::to_string(jump.readings) + " readings";
    }
    return text;
}

Scenario drawScenario(std::uint32_t seed) {
    Dice dice(seed);
    Scenario scenario;
    scenario.seed = seed;
    scenario.file = drawFile(dice);
    scenario.baudRate = static_cast<std::uint8_t>(dice.below(4));
    scenario.board.target = drawTarget(dice, scenario.file);
    scenario.board.pace = !dice.once(3);
    // Mode entry takes three frames, a block two to erase and four to write, the rest two.
    const auto frames =
        static_cast<std::uint32_t>(5 + 6 * ((scenario.file.image.size() + 1023) / 1024));
    scenario.clock = drawClock(dice, frames);
    for (std::uint32_t faults = dice.below(4); faults > 0; --faults) {
        scenario.board.faults.push_back(drawFault(dice, frames));
    }
    if (dice.once(20)) {
        scenario.board.target.flash.stuckAddress = dice.below(6000);
    }
    scenario.writes = dice.once(4) ? 2 : 1;
    return scenario;
}

} // namespace flashwriter::random
