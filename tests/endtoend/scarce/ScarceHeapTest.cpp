// The shipped command on a system whose memory runs out, below the language's own allocation: in
// the C library's calls, and in those for the program's threads. The first of these tests, and the
// one of the advice, take every allocation by turns, the others only some: all would take a minute.
#include "tests/endtoend/scarce/ScarceFixture.h"

namespace flashwriter::testing {
namespace {

class ScarceHeap : public ScarceFixture {
protected:
    ScarceHeap() : ScarceFixture(FLASHWRITE, FAILING_MALLOC_PRELOAD ":" LINES_PRELOAD) {}
};

TEST_F(ScarceHeap, ForARawImage) {
    failEachAllocation(0, [&](const std::string& variable) { return write(variable, ".bin"); });
}

// Every third.
TEST_F(ScarceHeap, ForRecordsAndProgress) {
    failEachAllocation(
        0,
        [&](const std::string& variable) { return write(variable, ".mot", ChildStream::Terminal); },
        [](int) { return 3; });
}

TEST_F(ScarceHeap, ForAdvice) {
    failEachAllocation(1, [&](const std::string& variable) {
        ChildProcess program(
            scarceFlashwrite("/dev/nowhere", "image.bin", variable, ChildStream::Pipe));
        return endOf(program, variable);
    });
}

// What runs out stays out. At growing distances, since what must not be lost is tried for seconds.
TEST_F(ScarceHeap, ForGood) {
    m_more = {"MEMORY_STAYS_SCARCE=1"};
    failEachAllocation(
        0,
        [&](const std::string& variable) { return write(variable, ".mot", ChildStream::Terminal); },
        [](int number) { return 1 + number / 2; });
}

} // namespace
} // namespace flashwriter::testing
