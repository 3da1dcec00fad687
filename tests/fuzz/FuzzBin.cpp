// The readers of raw images, on files of any size around the largest that fits.
//
// Input: three bytes of size, low byte first; the file's first bytes. Zeros fill it up.
#include "sequence/context/DiagnosticLog.h"
#include "targetfile/NSTargetFile.h"
#include "targetfile/NSTargetFileForMot.h"
#include "tests/fuzz/MemoryFile.h"
#include "tests/fuzz/Require.h"

#include <algorithm>
#include <vector>

namespace flashwriter::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t LARGEST = 262144;
constexpr std::size_t SIZES = 2 * LARGEST;

template <typename Reader>
void expectImage(Reader& reader, const std::string& path, const Bytes& content) {
    const bool fits = !content.empty() && content.size() <= LARGEST;
    require(reader.readFromBinFile(path) == (fits ? RESULT_OK : RESULT_FILE_SIZE_ERROR),
            "result of reading");
    require(reader.GetProgramMemorySize() == (fits ? content.size() : 0), "size of the image");
    require((reader.GetProgramMemory() != nullptr) == fits, "there is an image when it fits");
    require(!fits || std::equal(content.begin(), content.end(), reader.GetProgramMemory()),
            "the image is the file");
    require(reader.GetDataFlash() == nullptr && reader.GetDataSize() == 0, "no data flash");
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace flashwriter::fuzz;
    flashwriter::setDiagnosticSink([](const char*) {});
    if (size < 3) {
        return 0;
    }
    static const MemoryFile file;
    // Each reader is used again and again: nothing of an earlier image may stay.
    static flashwriter::NSTargetFile bin;
    static flashwriter::NSTargetFileForMot mot;
    Bytes content(bytes + 3, bytes + size);
    content.resize((bytes[0] + bytes[1] * 0x100U + bytes[2] * 0x10000U) % SIZES);
    file.write(content.data(), content.size());
    expectImage(bin, file.path(), content);
    expectImage(mot, file.path(), content);
    return 0;
}
