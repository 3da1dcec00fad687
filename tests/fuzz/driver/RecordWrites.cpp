// record_writes FOLDER: writes each image of the fuzz target for the driver to the virtual board,
// well and with a fault, and keeps what the board answered as inputs of the target.
#include "board/Fault.h"
#include "sequence/context/DiagnosticLog.h"
#include "tests/fuzz/driver/FuzzedImages.h"
#include "tests/fuzz/driver/Script.h"
#include "tests/simulation/BoardPort.h"
#include "tests/simulation/SimulatedWrite.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

using flashwriter::board::Bytes;
using flashwriter::board::TranscriptRecord;
using namespace flashwriter::fuzz;

// What the target is given for these answers: one for each frame of the host.
Bytes inputFor(std::uint8_t image, std::uint8_t speed,
               const flashwriter::board::Transcript& events) {
    Bytes input{image, speed, 0, 0};
    Bytes answer;
    bool asked = false;
    const auto endAnswer = [&] {
        if (asked) {
            input.push_back(static_cast<std::uint8_t>(Answer::raw));
            input.push_back(static_cast<std::uint8_t>(answer.size()));
            input.insert(input.end(), answer.begin(), answer.end());
        }
        answer.clear();
    };
    for (const TranscriptRecord& event : events) {
        if (event.kind == TranscriptRecord::Kind::hostFrame) {
            endAnswer();
            asked = true;
        } else if (event.kind == TranscriptRecord::Kind::reply) {
            answer.insert(answer.end(), event.bytes.begin(), event.bytes.end());
        }
    }
    endAnswer();
    return input;
}

void record(const std::string& folder, std::uint8_t image, const std::string& fault) {
    flashwriter::board::BoardOptions options;
    options.pace = false;
    options.target.flash.seed = image % 2 == 0 ? std::optional<std::uint32_t>() : 1;
    options.target.shortDataStatus = image % 3 == 1;
    options.target.baudRateReplyWithData = image % 3 == 2;
    if (!fault.empty()) {
        options.faults = {flashwriter::board::parseFault(fault)};
    }
    const auto speed = static_cast<std::uint8_t>(image % 4);
    flashwriter::simulation::BoardPort port(options);
    writeThrough(port, {}, fuzzedImages()[image].path, speed);
    const Bytes input = inputFor(image, speed, port.adapter().transcript());
    std::ofstream file(folder + "/image-" + std::to_string(image) +
                           (fault.empty() ? "" : "-" + fault.substr(0, fault.find('@'))),
                       std::ios::binary);
    file.write(reinterpret_cast<const char*>(input.data()),
               static_cast<std::streamsize>(input.size()));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        static_cast<void>(std::fprintf(stderr, "usage: record_writes FOLDER\n"));
        return 2;
    }
    flashwriter::setDiagnosticSink([](const char*) {});
    for (std::uint8_t image = 0; image < fuzzedImages().size(); ++image) {
        record(argv[1], image, "");
    }
    for (std::uint8_t image = 0; image < 5; ++image) { // the others are never written
        for (const char* const fault : {"silence@6", "wrong-sum@8", "doubled@3"}) {
            record(argv[1], image, fault);
        }
    }
    return 0;
}
