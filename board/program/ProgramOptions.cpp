#include "board/program/ProgramOptions.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include <CLI/CLI.hpp>

namespace flashwriter::board {

namespace {

// An option that takes a number of these units.
template <typename Unit>
CLI::Option* addTime(CLI::App& app, const char* name, BoardTime& time, const char* help) {
    const auto set = [&time](const std::int64_t& count) { time = Unit(count); };
    return app.add_option_function<std::int64_t>(name, set, help)
        ->check(CLI::Range(0, 3600000))
        ->default_str(std::to_string(std::chrono::duration_cast<Unit>(time).count()));
}

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        throw CLI::ValidationError("--flash-in", "cannot read " + path);
    }
    return bytes;
}

void addFlash(CLI::App& app, ProgramOptions& options) {
    FlashOptions& flash = options.board.target.flash;
    app.add_option("--flash-kib", flash.codeKib, "Size of the code flash")
        ->check(CLI::Range(16, 256))
        ->capture_default_str();
    app.add_option("--data-flash-kib", flash.dataKib, "Size of the data flash, 0 for none")
        ->check(CLI::Range(0, 16))
        ->capture_default_str();
    const auto setFill = [&flash](const std::uint32_t& value) {
        flash.fill = static_cast<std::uint8_t>(value);
    };
    app.add_option_function<std::uint32_t>("--flash-fill", setFill,
                                           "What every cell holds at first")
        ->check(CLI::Range(0, 255))
        ->default_str("255");
    app.add_option("--flash-seed", flash.seed, "Random contents at first, drawn from this number");
    const auto setContents = [&flash](const std::string& path) {
        flash.codeContents = readFile(path);
    };
    app.add_option_function<std::string>("--flash-in", setContents, "Code flash contents at first")
        ->check(CLI::ExistingFile);
    app.add_option("--stuck-cell", flash.stuckAddress, "Address of a cell that cannot be written");
    app.add_option("--flash-out", options.flashOut, "Write the code flash to this file on exit");
    app.add_option("--data-flash-out", options.dataFlashOut,
                   "Write the data flash to this file on exit");
}

void addTarget(CLI::App& app, TargetOptions& target) {
    app.add_option("--device-name", target.deviceName, "Up to 10 characters for the signature")
        ->capture_default_str();
    app.add_flag("--inverted-dtr", target.invertedDtr, "DTR off holds the board in reset, not on");
    app.add_flag("--long-speed-reply", target.baudRateReplyWithData,
                 "Answer Baud Rate Set by 7 bytes instead of 5");
    app.add_flag("--short-data-status", target.shortDataStatus,
                 "Answer data frames by 5 bytes instead of 6");
    using Milliseconds = std::chrono::milliseconds;
    using Microseconds = std::chrono::microseconds;
    addTime<Milliseconds>(app, "--mode-window-ms", target.modeWindow,
                          "From the release of reset to Baud Rate Set at most");
    addTime<Microseconds>(app, "--command-us", target.commandTime, "Before every answer");
    addTime<Microseconds>(app, "--frame-gap-us", target.frameGap, "Between two frames in a row");
    addTime<Milliseconds>(app, "--blank-check-ms", target.blankCheckTime, "Per block");
    addTime<Milliseconds>(app, "--erase-ms", target.eraseTime, "Per block");
    addTime<Milliseconds>(app, "--program-ms", target.programTime, "Per data frame");
    addTime<Milliseconds>(app, "--checksum-ms", target.checksumTime, "Per block");
    app.add_option("--monitor-text", target.monitor.text, "What the running program says");
    addTime<Milliseconds>(app, "--monitor-ms", target.monitor.interval,
                          "How often it says it, 0 for once");
    app.add_option("--monitor-speed", target.monitor.bitsPerSecond, "And how fast, bits per second")
        ->check(CLI::Range(1, 4000000))
        ->capture_default_str();
}

void addRun(CLI::App& app, ProgramOptions& options) {
    const auto setFaults = [&options](const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            try {
                options.board.faults.push_back(parseFault(text));
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError("--fault", error.what());
            }
        }
    };
    app.add_option_function<std::vector<std::string>>("--fault", setFaults,
                                                      "kind[:parameter][@n], may be repeated");
    app.add_flag("!--no-pace", options.board.pace, "Let bytes take no time");
    app.add_option("--link", options.link, "Make this symbolic link to the port");
    app.add_option("--transcript", options.transcript, "Write what happened to this file on exit");
    app.add_flag("--once", options.once, "Exit after the first programming session");
    app.add_flag("--strict", options.strict, "Exit with 3 when the host broke the protocol");
}

} // namespace

int parseCommandLine(int argc, const char* const* argv, ProgramOptions& options) {
    // A program to look at takes its time like a real board, unlike the library's default.
    options.board.target.eraseTime = std::chrono::milliseconds(10);
    options.board.target.programTime = std::chrono::milliseconds(2);
    options.board.target.frameGap = std::chrono::microseconds(500);

    CLI::App app{"A simulated microcontroller board behind a simulated USB-serial adapter.\n"
                 "Its port's path is the first line on standard output."};
    addFlash(app, options);
    addTarget(app, options.board.target);
    addRun(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitOk : kExitUsage;
    }
    return -1;
}

} // namespace flashwriter::board
