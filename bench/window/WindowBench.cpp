// What the desktop program's window costs, beside an empty one: time to start, idling, keys while a
// board is written, memory. It works on a desktop of its own, which nobody sees.
#include "bench/window/WindowReport.h"
#include "tests/support/ImageFile.h"
#include "tests/support/desktop/Desktop.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace {

namespace bench = flashwriter::bench;
namespace testing = flashwriter::testing;

int run(int argc, char** argv) {
    CLI::App app{"Measures the window of flash-writer beside an empty one."};
    bench::MeasuredPrograms programs{.flashWriter = FLASH_WRITER_PATH,
                                     .emptyWindow = EMPTY_WINDOW_PATH,
                                     .virtualBoard = VIRTUAL_BOARD_PATH,
                                     .linesLibrary = LINES_PRELOAD_PATH,
                                     .image = {}};
    int starts = 15;
    int idle = 5;
    int quiet = 15;
    std::size_t kib = 128;
    bool goals = false;
    app.add_option("--program", programs.flashWriter, "flash-writer to start")
        ->capture_default_str();
    app.add_option("--starts", starts, "how often to start each")->check(CLI::Range(1, 1000));
    app.add_option("--idle", idle, "seconds to idle")->check(CLI::Range(1, 3600));
    app.add_option("--kib", kib, "size of the image")->check(CLI::Range(1, 128));
    app.add_option("--quiet", quiet, "seconds to press keys without a write")
        ->check(CLI::Range(1, 3600));
    app.add_flag("--require-goals", goals, "fail when what a release has to reach is missed");
    CLI11_PARSE(app, argc, argv);

    testing::desktop();
    const testing::ImageFile image("image.bin", testing::patternImage(kib * 1024));
    programs.image = image.path();
    const bench::Screen screen;
    const bench::MeasuredWindows windows{
        .program = bench::seeWindow(screen, programs.flashWriter, "Flash Writer"),
        .empty = bench::seeWindow(screen, programs.emptyWindow, "Empty window")};
    bool reached = bench::reportStarts(screen, windows, starts);
    reached = bench::reportIdling(screen, windows, std::chrono::seconds(idle)) && reached;
    bench::reportMemory(screen, windows, programs);
    reached = bench::reportKeys(programs, std::chrono::seconds(quiet)) && reached;
    return reached || !goals ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "window_bench: %s\n", error.what()));
        return 1;
    }
}
