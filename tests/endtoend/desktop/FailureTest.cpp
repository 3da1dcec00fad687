// Each way in which a write can fail, and what is then on the screen.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include <fstream>

namespace flashwriter::testing {
namespace {

const std::string FAILED_AT_ONCE = "## Write Failed";
const std::string FAILED_IN_MODE = "## Programming Mode\n## Write Failed";
const std::string REFUSED = " Error\nエラー：コマンド・フレームに対する異常終了\n## Write Failed";

// What a failure after the signature leaves as the last command.
const char* const SIGNATURE = "COM = 0xC0, Retry = 0\n"
                              "ST1 = 0x06, DST1 = 0x00, DST2 = 0x00\n";

class DesktopFailure : public DesktopFixture {
protected:
    DesktopFailure() { m_options.target.flash.codeKib = 16; }

    void expect(const std::string& port, const std::string& file, const std::string& result,
                const std::string& log) const {
        SCOPED_TRACE(port + ", " + file);
        EXPECT_EQ(m_program.write(port, file), result);
        EXPECT_TRUE(m_program.waitUntilShown(LOG, log)) << m_program.shown(LOG);
    }

    // A write of one block that is not blank, with this fault.
    void expectFault(const char* fault, const std::string& result, const std::string& log) {
        SCOPED_TRACE(fault);
        m_options.faults = {board::parseFault(fault)};
        const std::string port = plugIn();
        expect(port, m_image.path(), result, log);
        m_board.stop();
    }

    const ImageFile m_image{"image.bin", patternImage(1000)};
};

TEST_F(DesktopFailure, OfThePort) {
    const ImageFile notes("notes", std::string("precious"));
    for (const std::string& port : {std::string("/dev/nowhere"), notes.path()}) {
        expect(port, m_image.path(), failure("1002", NO_COMMAND), FAILED_AT_ONCE);
    }
    std::ifstream after(notes.path());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(after), {}), "precious");
}

TEST_F(DesktopFailure, OfASilentBoard) {
    expectFault("silence",
                failure("2009", "COM = 0x9A, Retry = 5\n"
                                "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n"),
                FAILED_IN_MODE);
}

TEST_F(DesktopFailure, OfTheImage) {
    const std::string port = plugIn();
    const ImageFile empty("empty.bin", std::string());
    const ImageFile other("image.txt", patternImage(10));
    const ImageFile noRecords("notes.mot", std::string("; not a record\n"));
    const ImageFile forData("data.mot", std::string("S20C0F1000001020304050607080\n"));
    const ImageFile tooBig("big.bin", patternImage(16385));
    const ImageFile endless("endless.bin", std::string(2000000, 'x'));
    expect(port, "/no/such/image.bin", failure("3000", SIGNATURE), FAILED_IN_MODE);
    expect(port, "/no/such/image.mot", failure("3003", SIGNATURE), FAILED_IN_MODE);
    expect(port, empty.path(), failure("3002", SIGNATURE), FAILED_IN_MODE);
    expect(port, endless.path(), failure("3002", SIGNATURE), FAILED_IN_MODE);
    expect(port, other.path(), failure("3001", SIGNATURE), FAILED_IN_MODE);
    expect(port, noRecords.path(), failure("3001", SIGNATURE), FAILED_IN_MODE);
    expect(port, tooBig.path(), failure("3004", SIGNATURE), FAILED_IN_MODE);
    expect(port, forData.path(), failure("3005", SIGNATURE), FAILED_IN_MODE);
}

// Replies are counted: 1 speed, 2 reset, 3 and 4 signature, 5 blank check, 6 erase, 7 programming,
// 8 to 11 data frames, 12 verify, 13 and 14 checksum.
TEST_F(DesktopFailure, OfDamagedReplies) {
    const std::string erasing = "## Programming Mode\n## Block Blank Check & Erace...";
    expectFault("wrong-sum@2",
                failure("2003", "COM = 0x00, Retry = 0\n"
                                "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n"),
                FAILED_IN_MODE);
    expectFault("wrong-end@6",
                failure("2001", "COM = 0x22, Retry = 0\n"
                                "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n"),
                erasing + " Error\nエラー：フレームフォーマットが不正\n## Write Failed");
    expectFault("silence@5",
                failure("2005", "COM = 0x32, Retry = 0\n"
                                "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n"),
                erasing + " Error\nエラー：受信タイムアウト\n## Write Failed");
}

TEST_F(DesktopFailure, OfRefusedCommands) {
    const std::string erasing = "## Programming Mode\n## Block Blank Check & Erace...";
    const std::string writing = erasing + " OK\n## Programming...";
    expectFault("status:0x05@1",
                failure("2007", "COM = 0x9A, Retry = 0\n"
                                "ST1 = 0x05, DST1 = 0x00, DST2 = 0x00\n"),
                FAILED_IN_MODE);
    expectFault("status:0x1A@6",
                failure("2007", "COM = 0x22, Retry = 0\n"
                                "ST1 = 0x1A, DST1 = 0x00, DST2 = 0x00\n"),
                erasing + REFUSED);
    expectFault("status:0x1C@9",
                failure("2008", "COM = 0x40, Retry = 0\n"
                                "ST1 = 0x06, DST1 = 0x1C, DST2 = 0x06\n"),
                writing + " Error\nエラー：データ・フレームに対する異常終了\n## Write Failed");
    expectFault("status:0x12@14",
                failure("200D", "COM = 0xB0, Retry = 0\n"
                                "ST1 = 0x06, DST1 = 0x00, DST2 = 0x00\n"),
                writing + " OK\n## Write Failed");
}

TEST_F(DesktopFailure, OfAnAdapterThatIsPulledOut) {
    expectFault("unplug-frame@8",
                failure("2005", "COM = 0x40, Retry = 5\n"
                                "ST1 = 0x06, DST1 = 0x06, DST2 = 0x06\n"),
                "## Programming Mode\n## Block Blank Check & Erace... OK\n"
                "## Programming... Error\nエラー：受信タイムアウト\n## Write Failed");
}

} // namespace
} // namespace flashwriter::testing
