#include "tests/unit/advice/AdviceFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

FailureFacts motFacts() {
    FailureFacts facts = goodFacts();
    facts.filePath = "image.mot";
    facts.file.kind = ImageKind::Mot;
    return facts;
}

// The image is there and cannot be opened.
FailureFacts refusedFacts(int error) {
    FailureFacts facts = goodFacts();
    facts.file.state = FileState::NotReadable;
    facts.file.error = error;
    return facts;
}

TEST(FileAdvice, WhatStandsAtThePathComesFirst) {
    const std::pair<FileState, const char*> states[] = {
        {FileState::Missing, "No such file: image.bin. Check the path."},
        {FileState::NotReadable,
         "image.bin may not be read: Permission denied. Check its permissions."},
        {FileState::Directory, "image.bin is a directory: name the image in it."},
        {FileState::NotRegular,
         "image.bin is not a regular file: images are read from those only."}};
    for (const auto& [state, wanted] : states) {
        FailureFacts facts = goodFacts();
        facts.file.state = state;
        facts.file.error = state == FileState::NotReadable ? EACCES : 0;
        for (const ResultCode code :
             {RESULT_FILE_NOT_FOUND, RESULT_FILE_SIZE_ERROR, RESULT_FILE_READ_FAILED}) {
            EXPECT_EQ(advice(code, facts), wanted) << code;
        }
    }
}

TEST(FileAdvice, ALoopOfLinksIsToldFromARefusal) {
    for (const ResultCode code : {RESULT_FILE_NOT_FOUND, RESULT_FILE_READ_FAILED}) {
        EXPECT_EQ(advice(code, refusedFacts(ELOOP)),
                  "image.bin leads nowhere: a link on the way leads back to itself, or there are "
                  "too many of them. Name the image itself, or make the link again.");
    }
}

// A process may have only so many files open, and so may the system.
TEST(FileAdvice, AShortageIsNoMatterOfPermissions) {
    for (const int error : {EMFILE, ENFILE, ENOMEM}) {
        EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, refusedFacts(error)),
                  std::string("image.bin cannot be opened now: ") + std::strerror(error) +
                      ". Close other programs, or start this one again.");
    }
}

TEST(FileAdvice, APathThatIsTooLongIsNoMatterOfPermissions) {
    EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, refusedFacts(ENAMETOOLONG)),
              "image.bin is a longer path than the system takes: check it, or move the image to "
              "where its path is shorter.");
}

TEST(FileAdvice, OnlyARefusalIsAMatterOfPermissions) {
    EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, refusedFacts(EPERM)),
              "image.bin may not be read: Operation not permitted. Check its permissions.");
    for (const int error : {ESTALE, ENODEV, ENXIO}) {
        EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, refusedFacts(error)),
                  std::string("image.bin cannot be opened: ") + std::strerror(error) +
                      ". Check the disk that it is on, or put the image on another.");
    }
}

TEST(FileAdvice, AFileThatIsThereNowWasNotThen) {
    EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, goodFacts()),
              "image.bin was not as it is now when it was to be read: write again.");
    EXPECT_EQ(advice(RESULT_FILE_SIZE_ERROR, goodFacts()),
              "image.bin was not as it is now when it was to be read: write again.");
    EXPECT_EQ(advice(RESULT_UNSUPPORTED_FORMAT, goodFacts()),
              "image.bin was not as it is now when it was to be read: write again.");
}

TEST(FileAdvice, AnotherKindOfFileIsToldByItsName) {
    FailureFacts facts = goodFacts();
    facts.filePath = "image.hex";
    facts.file.kind = ImageKind::Other;
    EXPECT_EQ(advice(RESULT_UNSUPPORTED_FORMAT, facts),
              "image.hex ends neither in .bin nor in .mot: name a raw image .bin, and an S-record "
              "file .mot.");
}

TEST(FileAdvice, TextWithoutRecordsIsNoSRecordFile) {
    EXPECT_THAT(advice(RESULT_UNSUPPORTED_FORMAT, motFacts()),
                HasSubstr("image.mot is no S-record file that can be written: "));
    EXPECT_THAT(advice(RESULT_FILE_READ_FAILED, motFacts()),
                HasSubstr("image.mot could not be read as text: "));
    EXPECT_THAT(advice(RESULT_FILE_READ_FAILED, goodFacts()),
                HasSubstr("image.bin could not be read to its end: "));
}

TEST(FileAdvice, AFailingDiskIsNamed) {
    for (FailureFacts facts : {goodFacts(), motFacts()}) {
        const std::string expected =
            facts.filePath + " could not be read to its end: Input/output error. Its disk may be "
                             "failing: put the image on another disk, or build it again there.";
        facts.readError = EIO;
        EXPECT_EQ(advice(RESULT_FILE_READ_FAILED, facts), expected);
        facts.readError = 0;
        facts.file.state = FileState::NotReadable;
        facts.file.error = EIO;
        EXPECT_EQ(advice(RESULT_FILE_NOT_FOUND, facts), expected);
    }
}

TEST(FileAdvice, WrongSizesAreTold) {
    FailureFacts facts = goodFacts();
    facts.file.size = 0;
    EXPECT_EQ(advice(RESULT_FILE_SIZE_ERROR, facts), "image.bin is empty: build it again.");
    facts.file.size = 262145;
    EXPECT_EQ(advice(RESULT_FILE_SIZE_ERROR, facts),
              "image.bin has 262145 bytes, and a raw image has at most 262144: choose the image "
              "itself, or build it smaller.");
}

TEST(FileAdvice, AnImageTooLongForTheBoardHasBothSizes) {
    FailureFacts facts = goodFacts();
    facts.codeSize = 70000;
    facts.codeFlashSize = 65536;
    EXPECT_EQ(advice(RESULT_CODE_FLASH_SIZE_ERROR, facts),
              "image.bin needs 70000 bytes of code flash, and this board has 65536: it is made for "
              "another board, or has to become smaller.");
    facts.codeSize = 0;
    EXPECT_EQ(advice(RESULT_CODE_FLASH_SIZE_ERROR, facts),
              "image.bin does not fit into this board's code flash: it is made for another board, "
              "or has to become smaller.");
}

TEST(FileAdvice, DataFlashIsNeverWritten) {
    EXPECT_EQ(advice(RESULT_DATA_FLASH_SIZE_ERROR, motFacts()),
              "image.mot has S-records that reach into data flash (0xF1000 and above), which is "
              "never written: leave them out when building it.");
}

TEST(FileAdvice, StartAddressesHaveTheirOwn) {
    EXPECT_THAT(advice(RESULT_CODE_FLASH_ADDRESS_ERROR, motFacts()),
                HasSubstr("link it for address 0."));
    EXPECT_THAT(advice(RESULT_DATA_FLASH_ADDRESS_ERROR, motFacts()),
                HasSubstr("link it for address 0xF1000."));
}

} // namespace
} // namespace flashwriter
