// Images made by objcopy from linked firmware. What they hold is what objcopy says they hold: its
// raw image of the same program.
#include "tests/endtoend/write/WriteFixture.h"

namespace flashwriter::testing {
namespace {

const std::string FIRMWARE = FIRMWARE_DIR "/";

class Firmware : public WriteFixture {
protected:
    void writeRecords(const std::string& file, const std::string& raw, char type,
                      const std::vector<std::string>& speeds) {
        const Bytes content = contentOf(FIRMWARE + file);
        const std::string records = {'\n', 'S', type};
        EXPECT_NE(std::string(content.begin(), content.end()).find(records), std::string::npos)
            << file << " has no records of that type";
        for (const std::string& speed : speeds) {
            writeAndReadBack(speed, FIRMWARE + file, contentOf(FIRMWARE + raw));
        }
    }
};

TEST_F(Firmware, AsARawImage) {
    writeAndReadBack("115200", FIRMWARE + "low.bin", contentOf(FIRMWARE + "low.bin"));
    writeAndReadBack("500000", FIRMWARE + "low.bin", contentOf(FIRMWARE + "low.bin"));
}

TEST_F(Firmware, AsS1Records) {
    writeRecords("low-s1.mot", "low.bin", '1', {"115200", "500000"});
}

// The high one is long, and what differs is the reading.
TEST_F(Firmware, AsS2Records) {
    writeRecords("high-s2.mot", "high.bin", '2', {"500000"});
}

TEST_F(Firmware, AsLongS3Records) {
    writeRecords("high-s3.mot", "high.bin", '3', {"500000"});
}

} // namespace
} // namespace flashwriter::testing
