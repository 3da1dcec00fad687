// S-record files as srec_cat writes them, from an image that it also turns into what the flash
// should hold.
#include "tests/endtoend/write/WriteFixture.h"

namespace flashwriter::testing {
namespace {

class Records : public WriteFixture {
protected:
    // srec_cat's input: the image, two pieces cut out of it.
    std::vector<std::string> input() const {
        return {"/usr/bin/env", "srec_cat", m_source.path(), "-binary", "-exclude",
                "0x0123",       "0x0456",   "0x0800",        "0x0C00"};
    }
    void write(const std::vector<std::string>& format, const std::string& speed) {
        const ImageFile records("image.mot", Bytes{});
        const ImageFile raw("expected.bin", Bytes{});
        std::vector<std::string> toRecords = input();
        toRecords.insert(toRecords.end(), {"-o", records.path(), "-Motorola"});
        toRecords.insert(toRecords.end(), format.begin(), format.end());
        runTool(toRecords);
        std::vector<std::string> toRaw = input();
        toRaw.insert(toRaw.end(),
                     {"-fill", "0xFF", "0x0000", "0x1100", "-o", raw.path(), "-binary"});
        runTool(toRaw);
        writeAndReadBack(speed, records.path(), contentOf(raw.path()));
    }

    ImageFile m_source{"source.bin", patternImage(0x1100)};
};

TEST_F(Records, WithGapsAndAHeader) {
    write({"-header=A header that is longer than a record of data"}, "500000");
}

TEST_F(Records, WithGapsAndNoHeader) {
    write({"-disable=header"}, "115200");
}

TEST_F(Records, WithLinesEndingInCrLf) {
    write({"-line-termination=crlf"}, "500000");
}

TEST_F(Records, OfTwoThreeAndFourAddressBytes) {
    write({"-address-length=2"}, "500000");
    write({"-address-length=3"}, "115200");
    write({"-address-length=4"}, "500000");
}

TEST_F(Records, OfDifferentLengths) {
    for (const char* length : {"-line-length=12", "-line-length=80", "-line-length=512"}) {
        write({length}, "500000");
    }
}

TEST_F(Records, WithoutEndRecord) {
    write({"-disable=footer", "-disable=data-count"}, "500000");
}

} // namespace
} // namespace flashwriter::testing
