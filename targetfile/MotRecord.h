// The records of an S-record file that carry data.
#pragma once

#include "sequence/context/ResultCode.h"
#include "targetfile/MotLine.h"
#include "targetfile/MotLineReader.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter {

// An S1, S2 or S3 record as its line has it: nothing in it has been checked.
struct MotRecord {
    std::uint32_t address = 0;
    // Data bytes, address and checksum taken off the line's byte count. In 32-bit arithmetic: a
    // byte count too small even for those gives nearly 2^32.
    std::uint32_t size = 0;
    std::uint32_t end = 0;     // address + size, in 32-bit arithmetic
    std::size_t dataIndex = 0; // character of the line at which the data begins
    MotLine line;              // borrowed: valid until the next record is read
};

// Goes through a file's records in order, once.
class MotRecordReader {
public:
    // Opens the file at path (UTF-8); reads step bytes at once.
    explicit MotRecordReader(const std::string& path, std::size_t step = MotLineReader::usualStep)
        : m_lines(path, step) {}

    // Makes record the next S1, S2 or S3 record; lines of 9 characters or fewer and records of
    // every other type are passed over. False when there is none: at the text's end, after a
    // failure, or at a longer line that does not begin with "S", which ends the file's records.
    bool next(MotRecord& record);

    // Reads the rest of the file and returns what is to be said of the text up to where next() was
    // called, and of its encoding to its end.
    // RESULT_FILE_READ_FAILED: not a readable regular file, not UTF-8, or no memory.
    // RESULT_UNSUPPORTED_FORMAT: a line that does not begin with "S" ended the records.
    ResultCode finish();

private:
    MotLineReader m_lines;
    ResultCode m_result = RESULT_OK;
};

} // namespace flashwriter
