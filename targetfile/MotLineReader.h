// S-record text, line by line, however long the file is.
#pragma once

#include "targetfile/FileReader.h"
#include "targetfile/MotLine.h"
#include "targetfile/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace flashwriter {

// Reads a file as UTF-8 text and lends out its lines, split at every line feed and nowhere else; a
// byte order mark at the file's beginning is skipped. Uses one buffer, whatever the file's size,
// and lends out lines where they lie in it.
class MotLineReader {
public:
    // Characters of a line that a record can reach: type and byte count, and the 254 bytes that the
    // largest count leaves for address and data. Of a longer line only the beginning is lent out,
    // at least this much of it.
    static constexpr std::size_t reach = 4 + (2 * 254);

    // Bytes read at once: few calls to the system, and what was read is still in the processor's
    // cache when its lines are looked at.
    static constexpr std::size_t usualStep = 256UL * 1024;

    // Opens the file at path (UTF-8). step is at least 1.
    explicit MotLineReader(const std::string& path, std::size_t step = usualStep);

    // Makes line the next line, valid until the following call. False when there is none: at the
    // text's end, or after a failure.
    bool next(MotLine& line);

    // Reads what is left without splitting it into lines. True when the file could be opened and
    // read to its end, there was memory for the buffer, and all of the text is valid UTF-8.
    bool finish();

private:
    // A character has up to four bytes, the byte order mark three.
    static constexpr std::size_t reachBytes = 3 + (4 * reach);

    bool refill();
    bool judge(const std::uint8_t* fresh, std::size_t length, std::size_t kept);
    MotLine take(std::size_t length);

    FileReader m_file;
    std::size_t m_step;
    std::unique_ptr<std::uint8_t[]> m_buffer;
    std::size_t m_position = 0;  // in the buffer: where the next line begins
    std::size_t m_filled = 0;    // bytes in the buffer
    std::uint64_t m_offset = 0;  // the buffer's place in the file
    bool m_isBufferAscii = true; // all that is in the buffer
    bool m_isRestOfLine = false; // the buffer goes on with a line whose beginning was lent out
    bool m_isAtEnd = false;      // the file has no more
    bool m_hasFailed = false;
    Utf8Validator m_validator;
};

} // namespace flashwriter
