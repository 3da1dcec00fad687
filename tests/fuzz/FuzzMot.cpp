// The reader of S-records against the slow one of its tests, on any bytes as a file.
//
// Input: the file. How many bytes the passes read at a time comes from the bytes' sum.
#include "sequence/context/DiagnosticLog.h"
#include "targetfile/NSTargetFileForMot.h"
#include "tests/fuzz/MemoryFile.h"
#include "tests/fuzz/Require.h"
#include "tests/unit/targetfile/MotOutcome.h"
#include "tests/unit/targetfile/MotReference.h"

#include <algorithm>
#include <numeric>

namespace flashwriter::fuzz {
namespace {

constexpr std::uint64_t largestKept = 0x1000000; // bytes of the data image

bool isSame(const std::uint8_t* image, std::uint64_t size, const Bytes& expected) {
    return image != nullptr && size == expected.size() &&
           std::equal(expected.begin(), expected.end(), image);
}

void comparePasses(const std::string& path, const MotReference& expected, std::size_t step) {
    const MotReference outcome = readByPasses(path, step);
    require(outcome.measured == expected.measured, "result of the first pass");
    require(outcome.programExtent == expected.programExtent, "extent of code flash");
    require(outcome.dataExtent == expected.dataExtent, "extent of data flash");
    require(outcome.filled == expected.filled, "result of the second pass");
    require(outcome.program == expected.program, "bytes of code flash");
    require(outcome.data == expected.data, "bytes of data flash");
}

void compareClass(const std::string& path, const MotReference& expected) {
    NSTargetFileForMot file;
    const ResultCode result = expected.measured != RESULT_OK ? expected.measured : expected.filled;
    require(file.ReadFile(path) == result, "result of reading");
    if (result == RESULT_FILE_READ_FAILED) {
        require(file.GetProgramMemory() == nullptr && file.GetDataFlash() == nullptr &&
                    file.GetProgramMemorySize() == 0 && file.GetDataSize() == 0,
                "nothing is left of a file that cannot be read");
        return;
    }
    require(file.GetProgramMemorySize() == expected.programExtent, "size of code flash");
    require(file.GetDataSize() == expected.dataExtent, "size of data flash");
    if (expected.measured == RESULT_OK) {
        require(isSame(file.GetProgramMemory(), file.GetProgramMemorySize(), expected.program),
                "code flash as read");
        require(
            isSame(file.GetDataFlash(), std::min(file.GetDataSize(), largestKept), expected.data),
            "data flash as read");
    }
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace flashwriter;
    setDiagnosticSink([](const char*) {});
    static const fuzz::MemoryFile file;
    file.write(bytes, size);
    const MotReference expected = readMotReference({reinterpret_cast<const char*>(bytes), size});
    const std::size_t step = 1 + std::accumulate(bytes, bytes + size, std::size_t{0}) % 251;
    fuzz::comparePasses(file.path(), expected, step);
    fuzz::compareClass(file.path(), expected);
    return 0;
}
