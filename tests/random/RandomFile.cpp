#include "tests/random/RandomFile.h"

#include "tests/unit/targetfile/MotGenerator.h"
#include "tests/unit/targetfile/MotReference.h"

#include <algorithm>

namespace flashwriter::random {

namespace {

constexpr std::uint32_t LARGE_IMAGE = 6000;

std::uint32_t drawSize(Dice& dice) {
    constexpr std::uint32_t EDGES[] = {1, 255, 256, 257, 1023, 1024, 1025, 2048, 4095, 4096};
    if (dice.once(4)) {
        return dice.pick(EDGES);
    }
    if (dice.once(40)) {
        return dice.between(16000, 17000); // about as much as the smallest flash holds
    }
    return dice.between(1, dice.once(2) ? 1500 : LARGE_IMAGE);
}

// Noise, or long stretches of one byte, in which frames and blocks are alike.
Bytes drawImage(Dice& dice) {
    Bytes image(drawSize(dice));
    const bool stretches = dice.once(4);
    std::uint8_t value = dice.byte();
    for (std::uint8_t& byte : image) {
        if (!stretches || dice.once(400)) {
            value = dice.once(4) && stretches ? 0xFF : dice.byte();
        }
        byte = value;
    }
    return image;
}

// The image in records of every type and length, in any order, some of it twice.
std::string drawRecords(Dice& dice, const Bytes& image) {
    std::vector<std::string> lines;
    const std::uint32_t longest = dice.between(1, 250);
    for (std::size_t at = 0; at < image.size();) {
        const std::size_t count =
            std::min<std::size_t>(dice.between(1, longest), image.size() - at);
        const auto begin = image.begin() + static_cast<std::ptrdiff_t>(at);
        const Bytes data(begin, begin + static_cast<std::ptrdiff_t>(count));
        const int type = static_cast<int>(dice.between(1, 3));
        lines.push_back(motLine(type, static_cast<std::uint32_t>(at), data));
        if (!dice.once(50)) { // otherwise once more
            at += count;
        }
    }
    if (dice.once(3)) {
        for (std::uint32_t i = static_cast<std::uint32_t>(lines.size()); i > 1; --i) {
            std::swap(lines[i - 1], lines[dice.below(i)]);
        }
    }
    std::string text = dice.once(2) ? "S00600004844521B\n" : "";
    const std::string lineEnd = dice.once(3) ? "\r\n" : "\n";
    for (const std::string& line : lines) {
        text += line + lineEnd;
    }
    return text + (dice.once(2) ? "S70500000000FA\n" : "");
}

RandomFile asRaw(const Bytes& image, ResultCode result) {
    RandomFile file;
    file.name = "image.bin";
    file.contents.assign(image.begin(), image.end());
    file.read = result;
    file.image = image;
    return file;
}

RandomFile asRecords(std::string contents) {
    const MotReference reference = readMotReference(contents);
    RandomFile file;
    file.name = "image.mot";
    file.contents = std::move(contents);
    file.read = reference.measured != RESULT_OK ? reference.measured : reference.filled;
    file.image = reference.program;
    file.hasData = reference.dataExtent != 0;
    return file;
}

} // namespace

RandomFile drawFile(Dice& dice) {
    if (dice.once(100)) {
        return asRaw({}, RESULT_FILE_SIZE_ERROR);
    }
    if (dice.once(6)) {
        return asRecords(MotGenerator(dice.below(1'000'000)).file());
    }
    const Bytes image = drawImage(dice);
    if (dice.once(2)) {
        return asRecords(drawRecords(dice, image));
    }
    return asRaw(image, RESULT_OK);
}

} // namespace flashwriter::random
