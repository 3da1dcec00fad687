#pragma once

#include "tests/support/ImageFile.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::kernel {

// A small image in a file of either kind, no two bytes at the same place in both.
struct FilePair {
    struct Entry {
        std::string path;
        const std::vector<std::uint8_t>& image;
    };
    std::vector<Entry> entries() const {
        return {{raw.path(), rawImage}, {records.path(), recordImage}};
    }

    static std::vector<std::uint8_t> inverted(std::vector<std::uint8_t> image) {
        std::ranges::transform(image, image.begin(),
                               [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
        return image;
    }

    const std::vector<std::uint8_t> rawImage = testing::patternImage(1500);
    const std::vector<std::uint8_t> recordImage = inverted(testing::patternImage(2100));
    const testing::ImageFile raw{"image.bin", rawImage};
    const testing::ImageFile records{"image.mot", testing::motText(recordImage)};
};

} // namespace flashwriter::kernel
