#include "protocol/Frames.h"
#include "tests/unit/advice/AdviceFixture.h"

#include <gmock/gmock.h>

#include <set>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

_COMMANDINFO exchange(std::uint8_t command, std::uint64_t retry = 0) {
    return {command, 0, 0, 0, retry};
}

const char* const NEVER_ANSWERED =
    "The board never answered: check that it has power, that /dev/ttyUSB0 is its adapter, and that "
    "the data line and DTR are wired to it; if it stays so, plug the adapter in again.";

TEST(TargetAdvice, ABoardThatNeverAnswered) {
    EXPECT_EQ(advice(RESULT_RECEIVE_TIMEOUT, goodFacts(), exchange(COM_BAUD_RATE_SET)),
              NEVER_ANSWERED);
    EXPECT_EQ(advice(RESULT_MODE_ENTRY_TIMEOUT, goodFacts(), exchange(COM_BAUD_RATE_SET, 4)),
              NEVER_ANSWERED);
}

TEST(TargetAdvice, AComputerThatWasTooSlow) {
    EXPECT_THAT(advice(RESULT_MODE_ENTRY_TIMEOUT, goodFacts(), exchange(COM_BAUD_RATE_SET, 0)),
                HasSubstr("The computer was too slow"));
}

TEST(TargetAdvice, ABoardThatStoppedAnsweringDidSoSomewhere) {
    EXPECT_EQ(advice(RESULT_RECEIVE_TIMEOUT, goodFacts(), exchange(COM_BLOCK_ERASE)),
              "The board stopped answering when it was to erase a block: check its power and the "
              "cable, and write again; if it stays so, plug the adapter in again.");
    std::set<std::string> texts;
    for (const std::uint8_t command :
         {COM_RESET, COM_SILICON_SIGNATURE, COM_BLOCK_BLANK_CHECK, COM_BLOCK_ERASE, COM_PROGRAMMING,
          COM_CHECKSUM, std::uint8_t{0x55}}) {
        texts.insert(advice(RESULT_RECEIVE_TIMEOUT, goodFacts(), exchange(command)));
    }
    EXPECT_EQ(texts.size(), 7U);
}

TEST(TargetAdvice, OnlyTheFasterSpeedHasASlowerOne) {
    FailureFacts facts = goodFacts();
    for (const ResultCode code :
         {RESULT_RECEIVE_TIMEOUT, RESULT_SUM_ERROR, RESULT_FRAME_FORMAT_ERROR}) {
        facts.speedIndex = 0;
        EXPECT_THAT(advice(code, facts, exchange(COM_RESET)), Not(HasSubstr("115200")));
        facts.speedIndex = 2;
        EXPECT_THAT(advice(code, facts, exchange(COM_RESET)), HasSubstr(", or write at 115200"));
    }
}

TEST(TargetAdvice, APortThatHasGoneExplainsEveryFailureOfTheLine) {
    FailureFacts facts = goodFacts();
    facts.port = {};
    for (const ResultCode code :
         {RESULT_RECEIVE_TIMEOUT, RESULT_SEND_FAILED, RESULT_MODE_ENTRY_TIMEOUT,
          RESULT_BAUD_RATE_CHANGE_FAILED, RESULT_FRAME_FORMAT_ERROR}) {
        EXPECT_EQ(advice(code, facts, exchange(COM_PROGRAMMING, 4)),
                  "/dev/ttyUSB0 has gone: the adapter came loose. Plug it in and write again.");
    }
}

TEST(TargetAdvice, AnotherReaderExplainsEveryFailureOfTheLine) {
    FailureFacts facts = goodFacts();
    facts.port.holders = {{812, "screen"}};
    for (const ResultCode code : {RESULT_RECEIVE_TIMEOUT, RESULT_SUM_ERROR,
                                  RESULT_MODE_ENTRY_TIMEOUT, RESULT_BUFFER_OVERFLOW}) {
        EXPECT_EQ(advice(code, facts, exchange(COM_BAUD_RATE_SET, 4)),
                  "/dev/ttyUSB0 is also open in screen (process 812), which takes away what the "
                  "board answers: close it and write again.");
    }
}

TEST(TargetAdvice, AnotherReaderExplainsNoRefusal) {
    FailureFacts facts = goodFacts();
    facts.port.holders = {{812, "screen"}};
    EXPECT_THAT(advice(RESULT_CHECKSUM_MISMATCH, facts), Not(HasSubstr("screen")));
    EXPECT_THAT(advice(RESULT_COMMAND_FRAME_ABORT, facts), Not(HasSubstr("screen")));
    EXPECT_THAT(advice(RESULT_INIT_FAILED, facts), Not(HasSubstr("screen")));
}

TEST(TargetAdvice, WhatIsNoPortCannotAnswer) {
    FailureFacts facts = goodFacts();
    facts.portPath = "/dev/null";
    facts.port.state = PortState::NotPort;
    EXPECT_EQ(advice(RESULT_MODE_ENTRY_TIMEOUT, facts, exchange(COM_BAUD_RATE_SET, 4)),
              "/dev/null is not a serial port. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
}

TEST(TargetAdvice, RefusalsShowTheStatusBytes) {
    EXPECT_THAT(advice(RESULT_COMMAND_FRAME_ABORT, goodFacts(), {COM_BLOCK_ERASE, 0x1A, 0, 0, 0}),
                HasSubstr("The board refused to erase a block (status 0x1A): "));
    EXPECT_THAT(advice(RESULT_DATA_FRAME_ABORT, goodFacts(), {COM_PROGRAMMING, 6, 0x06, 0x1C, 0}),
                HasSubstr("(status 0x06, 0x1C), and its contents are incomplete: write again"));
}

TEST(TargetAdvice, AChecksumThatDiffersIsMendedByAnotherWrite) {
    EXPECT_THAT(advice(RESULT_CHECKSUM_MISMATCH, goodFacts(), exchange(COM_CHECKSUM)),
                HasSubstr("another checksum than the image has: write again"));
}

TEST(TargetAdvice, EveryCodeHasASentenceOfItsOwn) {
    std::set<std::string> texts;
    int codes = 0;
    for (const auto& [first, last] :
         {std::pair{RESULT_PORT_INFO_FAILED, RESULT_PORT_OPEN_ERROR},
          std::pair{RESULT_INIT_FAILED, RESULT_CHECKSUM_MISMATCH},
          std::pair{RESULT_FILE_NOT_FOUND, RESULT_DATA_FLASH_ADDRESS_ERROR}}) {
        for (ResultCode code = first; code <= last; ++code, ++codes) {
            FailureFacts facts = goodFacts();
            facts.file.kind = ImageKind::Mot;
            facts.file.size = 0;
            const std::string text = advice(code, facts, exchange(COM_CHECKSUM));
            EXPECT_THAT(text, Not(HasSubstr("no explanation")));
            EXPECT_EQ(text.find('\n'), std::string::npos);
            EXPECT_TRUE(text.ends_with('.')) << text;
            texts.insert(text);
        }
    }
    // A send that failed and one that timed out are one thing to whoever has to mend it, as are an
    // answer without form and one with a wrong sum.
    EXPECT_EQ(static_cast<int>(texts.size()), codes - 2);
}

// What needs no facts is the same whatever they are. Without them nothing else is claimed.
TEST(TargetAdvice, WithoutFactsOnlyWhatNeedsNoneIsSaid) {
    std::set<ResultCode> plain;
    for (ResultCode code = RESULT_OK; code <= RESULT_DATA_FLASH_ADDRESS_ERROR; ++code) {
        const _RESULTINFO result{code, exchange(COM_BLOCK_ERASE)};
        const std::string text = failureAdvice(result);
        if (!text.empty()) {
            EXPECT_EQ(text, failureAdvice(result, goodFacts()));
            EXPECT_EQ(text, failureAdvice(result, {}));
            plain.insert(code);
        }
    }
    EXPECT_THAT(plain, ::testing::ElementsAre(RESULT_INIT_FAILED, RESULT_PARAMETER_ERROR,
                                              RESULT_COMMAND_FRAME_ABORT, RESULT_DATA_FRAME_ABORT,
                                              RESULT_NOT_BLANK, RESULT_CHECKSUM_MISMATCH));
}

TEST(TargetAdvice, UnknownCodesSendToTheDiagnostics) {
    for (const ResultCode code : {ResultCode{1}, ResultCode{0x1003}, ResultCode{0x200E},
                                  ResultCode{0x3008}, ~ResultCode{0}}) {
        EXPECT_THAT(advice(code, goodFacts()), HasSubstr("see what the diagnostics in it say."));
    }
    EXPECT_THAT(advice(0x200E, goodFacts()), HasSubstr("Result 0x0000200E "));
}

TEST(TargetAdvice, SuccessNeedsNone) {
    EXPECT_EQ(advice(RESULT_OK, goodFacts()), "");
}

} // namespace
} // namespace flashwriter
