// The serial monitor's text: whatever a board sends, however it is cut, reads as if it came at
// once.
//
// Input: the bytes; the last ones say where they are cut.
#include "app/MonitorText.h"
#include "tests/fuzz/MonitorModel.h"
#include "tests/fuzz/Require.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace flashwriter::fuzz {
namespace {

constexpr int MOST_CUTS = 12;

// Pieces of the sizes that the input says; the last one is all that is left.
std::vector<std::string_view> cut(std::string_view text, const std::vector<std::size_t>& sizes) {
    std::vector<std::string_view> pieces;
    for (const std::size_t size : sizes) {
        pieces.push_back(text.substr(0, size));
        text.remove_prefix(pieces.back().size());
    }
    pieces.push_back(text);
    return pieces;
}

void run(FuzzedDataProvider& input) {
    std::vector<std::size_t> sizes(input.ConsumeIntegralInRange<std::size_t>(0, MOST_CUTS));
    for (std::size_t& size : sizes) {
        size = input.ConsumeIntegral<std::uint8_t>();
    }
    const std::string bytes = input.ConsumeRemainingBytesAsString();
    const std::vector<std::string_view> pieces = cut(bytes, sizes);

    static MonitorText monitor; // used again and again, as in the program
    monitor.reset();
    QString text;
    for (const std::string_view piece : pieces) {
        text += monitor.decode(reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size());
    }
    require(text == textOf(pieces), "the text of the pieces");
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    flashwriter::fuzz::run(input);
    return 0;
}
