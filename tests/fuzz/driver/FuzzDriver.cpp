// A whole write by the real drivers, in virtual time, to a board that the fuzzer plays. See
// Script.h for what an input means.
#include "sequence/context/DiagnosticLog.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/driver/FuzzedImages.h"
#include "tests/fuzz/driver/ScriptedPort.h"
#include "tests/fuzz/driver/SuccessProof.h"
#include "tests/random/RecordVerdict.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace flashwriter::fuzz {
namespace {

using random::Ending;
using simulation::PortWrite;

// Coarse, for the fuzzer has many inputs: most of what a write does is to look at the clock.
constexpr auto LOOK = std::chrono::milliseconds(4);

// A clock that goes back makes one wait longer, by no more than it has lasted.
constexpr auto LONGEST_WAIT = std::chrono::milliseconds(300);

simulation::ClockOptions clockFor(const ScriptHeader& header) {
    simulation::ClockOptions clock;
    clock.step = LOOK;
    if (header.clockJumpsAfter() != 0) {
        const auto hour = std::chrono::hours(1);
        clock.jumps = {{header.clockJumpsAfter(), 0, header.clockGoesBack() ? -hour : hour}};
    }
    return clock;
}

// A board may say of its flash what it likes, so the image may be too large for it or not.
std::vector<Ending> endingsFor(const FuzzedImage& image) {
    random::WriteFacts facts{.read = image.read,
                             .imageSize = image.image.size(),
                             .hasData = image.hasData,
                             .codeFlashSize = 0,
                             .longestLook = LOOK};
    std::vector<Ending> endings = allowedEndings(facts);
    facts.codeFlashSize = image.image.size();
    for (Ending& ending : allowedEndings(facts)) {
        endings.push_back(std::move(ending));
    }
    return endings;
}

void run(std::span<const std::uint8_t> input) {
    Script script(input);
    const ScriptHeader header(script);
    const FuzzedImage& image = fuzzedImages()[header.image % fuzzedImages().size()];
    const auto baudRate = static_cast<std::uint8_t>(header.speed % 4);
    ScriptedPort port(header, script, wholeBlocks(image));
    const PortWrite write = writeThrough(port, clockFor(header), image.path, baudRate);
    for (const std::string& complaint : recordComplaints(write, endingsFor(image), LONGEST_WAIT)) {
        require(false, complaint.c_str());
    }
    require(write.record.returned != RESULT_OK || provesSuccess(port, image, baudRate),
            "a success has to follow from the board's answers");
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    flashwriter::setDiagnosticSink([](const char*) {});
    flashwriter::fuzz::run({bytes, size});
    return 0;
}
