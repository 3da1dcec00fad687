// Whole writes that fail: what is told, and what the board is left with.
#include "tests/sequence/BoardFixture.h"
#include "tests/support/EmptyImage.h"
#include "tests/support/FailingThread.h"

namespace flashwriter {
namespace {

using board::FaultKind;
using testing::ImageFile;
using testing::motText;
using testing::patternImage;

const ProgressCalls UP_TO_MODE_ENTRY{{101, 0}, {101, 5}};
const ProgressCalls UP_TO_FILE{{101, 0}, {101, 5}, {100, 5}, {100, 10}};
const ProgressCalls UP_TO_CHECK{{101, 0}, {101, 5}, {100, 5}, {100, 10}, {102, 10}};

// Replies of a write of one dirty block, counted as the board counts them.
enum Reply : std::uint32_t {
    BAUD_RATE = 1,
    RESET,
    SIGNATURE,
    SIGNATURE_DATA,
    BLANK_CHECK,
    ERASE,
    PROGRAMMING,
    FRAME_1,
    FRAME_2,
    FRAME_3,
    FRAME_4,
    VERIFY,
    CHECKSUM,
    CHECKSUM_DATA,
};

class FailedWrite : public BoardFixture {
protected:
    FailedWrite() { m_options.target.flash.fill = 0x5A; }

    RunRecord writeOneBlock(const std::vector<board::Fault>& faults) {
        m_options.faults = faults;
        const ImageFile file("image.bin", patternImage(1000));
        return write(file.path());
    }
    void expectUntouched() const {
        EXPECT_EQ(m_board.codeFlash(), m_before);
        EXPECT_EQ(m_board.dataFlash(), m_dataBefore);
    }
    void expectNoRoomForData(const std::string& dataRecord = "S20C0F1000001020304050607080\n") {
        const ImageFile file("image.mot", motText(patternImage(16)) + dataRecord);
        const RunRecord record = write(file.path());
        EXPECT_EQ(record.returned, RESULT_DATA_FLASH_SIZE_ERROR);
        EXPECT_EQ(record.window->progress, UP_TO_CHECK);
        EXPECT_EQ(commands(), (std::vector<int>{0x9A, 0x00, 0xC0}));
        expectUntouched();
    }
};

TEST_F(FailedWrite, APortThatCannotBeOpened) {
    const ImageFile file("image.bin", patternImage(1));
    const RunRecord record = runDriver("/dev/no-such-port", 0, file.path());
    expectAgreement(record);
    EXPECT_EQ(record.returned, RESULT_PORT_OPEN_ERROR);
    EXPECT_EQ(record.log, std::vector<std::string>{FAILED});
    EXPECT_EQ(record.window->progress, (ProgressCalls{{101, 0}}));
    EXPECT_EQ(record.outcome.ComInfo.Command, 0);
}

TEST_F(FailedWrite, NoThreadToReceiveWith) {
    m_board.start(m_options);
    m_before = m_board.codeFlash();
    m_dataBefore = m_board.dataFlash();
    const ImageFile file("image.bin", patternImage(1));
    TestMainQueue queue;
    const auto driver = std::make_shared<NSSequenceProcessor>(queue.handle());
    const auto window = std::make_shared<RecordingWindow>();
    _RESULTINFO outcome{};
    testing::failThreadCreation = true;
    const ResultCode returned =
        driver->start(contextFor(m_board.portPath(), 0, file.path(), outcome), window);
    testing::failThreadCreation = false;
    queue.run();
    EXPECT_EQ(returned, RESULT_INIT_FAILED);
    EXPECT_EQ(outcome.Result, RESULT_INIT_FAILED);
    EXPECT_EQ(window->progress, (ProgressCalls{{101, 0}}));
    EXPECT_EQ(window->results.size(), 1U);
    EXPECT_EQ(window->closings, 1);
    EXPECT_TRUE(m_board.waitForClosings(1, std::chrono::seconds(20)));
    expectUntouched();
}

TEST_F(FailedWrite, ABoardThatIsNotThere) {
    const RunRecord record = writeOneBlock({{FaultKind::silence, 0, board::Fault::kDefault}});
    EXPECT_EQ(record.returned, RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, FAILED}));
    EXPECT_EQ(record.window->progress, UP_TO_MODE_ENTRY);
    EXPECT_EQ(record.outcome.ComInfo.Command, 0x9A);
    EXPECT_EQ(record.outcome.ComInfo.Retry, 4U);
    EXPECT_EQ(modeEntries(), 2);
    EXPECT_EQ(lastDtrBeforeClosing(), "DTR off");
    expectUntouched();
}

TEST_F(FailedWrite, AModeEntryRefusedIsNotRepeated) {
    const RunRecord record = writeOneBlock({{FaultKind::status, BAUD_RATE, 0x05}});
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(commands(), std::vector<int>{0x9A});
    EXPECT_EQ(record.outcome.ComInfo.ST1, 0x05);
    EXPECT_EQ(modeEntries(), 1);
    EXPECT_EQ(lastDtrBeforeClosing(), "DTR on");
}

TEST_F(FailedWrite, ASecondModeEntryRefusedIsNotRepeatedEither) {
    m_options.target.invertedDtr = true;
    const RunRecord record = writeOneBlock({{FaultKind::status, BAUD_RATE, 0x05}});
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT) << "the second code is the result";
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, FAILED}));
    EXPECT_EQ(commands(), std::vector<int>{0x9A});
    EXPECT_EQ(record.outcome.ComInfo.ST1, 0x05);
    EXPECT_EQ(modeEntries(), 2);
    EXPECT_EQ(lastDtrBeforeClosing(), "DTR off");
}

TEST_F(FailedWrite, AnUnknownSpeedIndex) {
    const ImageFile file("image.bin", patternImage(1));
    const RunRecord record = write(file.path(), 4);
    EXPECT_EQ(record.returned, RESULT_PARAMETER_ERROR);
    EXPECT_TRUE(commands().empty());
}

TEST_F(FailedWrite, AFileThatIsMissingIsNoticedInProgrammingMode) {
    const RunRecord record = write("/no/such/image.bin");
    EXPECT_EQ(record.returned, RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, FAILED}));
    EXPECT_EQ(record.window->progress, UP_TO_FILE);
    EXPECT_EQ(commands(), (std::vector<int>{0x9A, 0x00, 0xC0}));
    expectUntouched();
}

TEST_F(FailedWrite, FilesThatAreNoImages) {
    const ImageFile text("image.txt", patternImage(1));
    EXPECT_EQ(write(text.path()).returned, RESULT_UNSUPPORTED_FORMAT);
    const ImageFile empty("image.bin", Bytes{});
    EXPECT_EQ(write(empty.path()).returned, RESULT_FILE_SIZE_ERROR);
    const ImageFile comment("image.mot", std::string("; not a record\n"));
    EXPECT_EQ(write(comment.path()).returned, RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(write("/no/such/image.mot").returned, RESULT_FILE_READ_FAILED);
}

// No block is the driver's business then, and it asks for the range up to 0 - 1: for all of it.
TEST_F(FailedWrite, AnImageOfNoBytesIsLeftToTheBoardToRefuse) {
    testing::imagesAreEmpty = true;
    const RunRecord record = write("image.bin");
    testing::imagesAreEmpty = false;
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(record.log, (std::vector<std::string>{
                              MODE_LINE, ERASE_LINE, OK_TEXT, PROGRAM_LINE,
                              " Error\nエラー：コマンド・フレームに対する異常終了\n", FAILED}));
    EXPECT_EQ(commands(), (std::vector<int>{0x9A, 0x00, 0xC0, 0x40}));
    EXPECT_EQ(hostFrames().back(),
              (Bytes{0x01, 0x07, 0x40, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xBC, 0x03}));
    EXPECT_EQ(record.window->progress.back(), std::make_pair(103, 10));
    expectUntouched();
}

TEST_F(FailedWrite, AnImageOfExactlyTheFlashFitsAndOneByteMoreDoesNot) {
    const ImageFile fits("image.bin", patternImage(16384));
    EXPECT_EQ(write(fits.path(), 2).returned, RESULT_OK);
    const ImageFile tooLong("image.bin", patternImage(16385));
    const RunRecord record = write(tooLong.path(), 2);
    EXPECT_EQ(record.returned, RESULT_CODE_FLASH_SIZE_ERROR);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, FAILED}));
    EXPECT_EQ(record.window->progress, UP_TO_CHECK);
    expectUntouched();
}

TEST_F(FailedWrite, RecordsForDataFlashAreAlwaysTooMany) {
    for (const std::uint32_t dataKib : {0U, 4U, 8U}) {
        SCOPED_TRACE(dataKib);
        m_options.target.flash.dataKib = dataKib;
        expectNoRoomForData();
    }
}

// As in an image that was built for another board.
TEST_F(FailedWrite, RecordsFarAboveAllFlashAreTooManyToo) {
    expectNoRoomForData("S30D080000000001020304050607CE\n");
    expectNoRoomForData("S30DFFFFFF000001020304050607D6\n");
}

TEST_F(FailedWrite, CodeThatIsTooLongIsToldBeforeRecordsFarAbove) {
    const ImageFile file("image.mot",
                         motText(patternImage(16385)) + "S30D080000000001020304050607CE\n");
    const RunRecord record = write(file.path());
    EXPECT_EQ(record.returned, RESULT_CODE_FLASH_SIZE_ERROR);
    EXPECT_EQ(record.window->progress, UP_TO_CHECK);
    expectUntouched();
}

// Ends so far up, or below the start of data flash, that by them alone there would be room.
TEST_F(FailedWrite, RecordsForDataFlashAreTooManyWhateverTheSignatureSays) {
    for (const std::uint32_t end : {0xFFFFFFU, 0x1E2007U, 0x000001U, 0xF0FFEU}) {
        SCOPED_TRACE(end);
        m_options.target.signatureDataEnd = end;
        expectNoRoomForData();
    }
}

TEST_F(FailedWrite, ABlankCheckThatFailsShowsItsText) {
    const RunRecord record = writeOneBlock({{FaultKind::status, BLANK_CHECK, 0x04}});
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(record.log, (std::vector<std::string>{
                              MODE_LINE, ERASE_LINE,
                              " Error\nエラー：コマンド・フレームに対する異常終了\n", FAILED}));
    EXPECT_EQ(record.outcome.ComInfo.Command, 0x32);
    expectUntouched();
}

TEST_F(FailedWrite, ABlankCheckThatTimesOutIsNotTriedAgain) {
    const RunRecord record = writeOneBlock({{FaultKind::silence, BLANK_CHECK, -1}});
    EXPECT_EQ(record.returned, RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(commands(), (std::vector<int>{0x9A, 0x00, 0xC0, 0x32}));
}

TEST_F(FailedWrite, AnEraseThatFailsReplacesNotBlank) {
    const RunRecord record = writeOneBlock({{FaultKind::status, ERASE, 0x1A}});
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(record.outcome.ComInfo.Command, 0x22);
    EXPECT_EQ(record.outcome.ComInfo.ST1, 0x1A);
}

TEST_F(FailedWrite, TheFirstBadBlockEndsTheErasing) {
    // Reply 7 is the blank check of the second of three blocks.
    m_options.faults = {{FaultKind::status, 7, 0x04}};
    const ImageFile file("image.bin", patternImage(3000));
    const RunRecord record = write(file.path());
    EXPECT_EQ(record.returned, RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(commands(), (std::vector<int>{0x9A, 0x00, 0xC0, 0x32, 0x22, 0x32}));
    EXPECT_EQ(record.window->progress.back(), std::make_pair(102, 16));
}

TEST_F(FailedWrite, ARefusedDataFrameShowsItsText) {
    const RunRecord record = writeOneBlock({{FaultKind::status, FRAME_2, 0x1C}});
    EXPECT_EQ(record.returned, RESULT_DATA_FRAME_ABORT);
    EXPECT_EQ(record.log, (std::vector<std::string>{
                              MODE_LINE, ERASE_LINE, OK_TEXT, PROGRAM_LINE,
                              " Error\nエラー：データ・フレームに対する異常終了\n", FAILED}));
    EXPECT_EQ(record.outcome.ComInfo.Command, 0x40);
    EXPECT_EQ(record.outcome.ComInfo.DST1, 0x1C);
    EXPECT_EQ(record.window->progress.back(), std::make_pair(103, 100));
}

TEST_F(FailedWrite, ACellThatDoesNotTakeItsByteIsNoticed) {
    m_options.target.flash.stuckAddress = 0x123;
    const RunRecord record = writeOneBlock({});
    EXPECT_EQ(record.returned, RESULT_DATA_FRAME_ABORT);
}

TEST_F(FailedWrite, AChecksumThatDiffersSaysNothingInTheLog) {
    const RunRecord record = writeOneBlock({{FaultKind::status, CHECKSUM_DATA, 0x00}});
    EXPECT_EQ(record.returned, RESULT_CHECKSUM_MISMATCH);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, ERASE_LINE, OK_TEXT, PROGRAM_LINE,
                                                    OK_TEXT, FAILED}));
    EXPECT_EQ(commands().back(), 0xB0) << "the flash is left as it is";
}

TEST_F(FailedWrite, AChecksumThatDoesNotComeSaysNothingInTheLog) {
    const RunRecord record = writeOneBlock({{FaultKind::silence, CHECKSUM_DATA, -1}});
    EXPECT_EQ(record.returned, RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, ERASE_LINE, OK_TEXT, PROGRAM_LINE,
                                                    OK_TEXT, FAILED}));
}

TEST_F(FailedWrite, ATargetThatListensLateIsTriedWithDtrTheOtherWayRoundOnce) {
    const ImageFile file("image.bin", patternImage(1));
    m_options.faults = {{FaultKind::slowEntry, 0, 150}};
    const RunRecord record = write(file.path());
    EXPECT_EQ(record.returned, RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_EQ(record.log, (std::vector<std::string>{MODE_LINE, FAILED}));
}

TEST_F(FailedWrite, ANewWriteMendsAFailedOne) {
    const Bytes image = patternImage(1000);
    const ImageFile file("image.bin", image);
    m_options.faults = {{FaultKind::status, FRAME_3, 0x1C}};
    m_board.start(m_options);
    m_before = m_board.codeFlash();
    EXPECT_NE(runDriver(m_board.portPath(), 0, file.path()).returned, RESULT_OK);
    EXPECT_EQ(runDriver(m_board.portPath(), 0, file.path()).returned, RESULT_OK);
    m_board.stop();
    EXPECT_EQ(m_board.codeFlash(), testing::flashAfter(image, m_before));
}

} // namespace
} // namespace flashwriter
