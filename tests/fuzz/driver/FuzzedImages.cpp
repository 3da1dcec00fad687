#include "tests/fuzz/driver/FuzzedImages.h"

#include "tests/support/ImageFile.h"

#include <deque>

namespace flashwriter::fuzz {

namespace {

using flashwriter::testing::ImageFile;
using flashwriter::testing::motText;
using flashwriter::testing::patternImage;

class Images {
public:
    Images() {
        addRaw(patternImage(1));
        addRaw(patternImage(1024));
        addRaw(patternImage(1500));
        addRaw(std::vector<std::uint8_t>(700, 0x42)); // frames that are alike
        addRecords(patternImage(600), "", false);
        addRecords(patternImage(100), "S309000F100001020304E6\n", true);
        add({.path = "/no/such/image.bin", .read = RESULT_FILE_NOT_FOUND, .image = {}});
    }

    std::vector<FuzzedImage> all;

private:
    void add(FuzzedImage image) { all.push_back(std::move(image)); }
    void addRaw(const std::vector<std::uint8_t>& image) {
        m_files.emplace_back("image.bin", image);
        add({.path = m_files.back().path(), .read = RESULT_OK, .image = image});
    }
    void addRecords(const std::vector<std::uint8_t>& image, const std::string& more, bool hasData) {
        m_files.emplace_back("image.mot", motText(image) + more);
        add({.path = m_files.back().path(), .read = RESULT_OK, .image = image, .hasData = hasData});
    }

    std::deque<ImageFile> m_files;
};

} // namespace

const std::vector<FuzzedImage>& fuzzedImages() {
    static const Images images;
    return images.all;
}

std::vector<std::uint8_t> wholeBlocks(const FuzzedImage& image) {
    return flashwriter::testing::flashAfter(
        image.image, std::vector<std::uint8_t>((image.image.size() + 1023) / 1024 * 1024));
}

} // namespace flashwriter::fuzz
