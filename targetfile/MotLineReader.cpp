#include "targetfile/MotLineReader.h"

#include <array>
#include <cstring>
#include <new>

namespace flashwriter {

MotLineReader::MotLineReader(const std::string& path, std::size_t step)
    : m_file(path), m_step(step), m_buffer(new (std::nothrow) std::uint8_t[reachBytes + step]),
      m_hasFailed(!m_file.isOpen() || !m_buffer) {}

// A line that the buffer's end cuts is read once more from the file, together with what follows it,
// instead of being moved to the buffer's beginning.
bool MotLineReader::refill() {
    const std::size_t kept = m_filled - m_position;
    m_offset += m_position;
    m_position = 0;
    const std::int64_t count = m_file.readAt(m_offset, m_buffer.get(), kept + m_step);
    if (count < static_cast<std::int64_t>(kept)) {
        return false; // an error, or the file has been shortened below what was read before
    }
    m_filled = static_cast<std::size_t>(count);
    m_isAtEnd = m_filled < kept + m_step;
    return judge(m_buffer.get() + kept, m_filled - kept, kept);
}

bool MotLineReader::judge(const std::uint8_t* fresh, std::size_t length, std::size_t kept) {
    m_isBufferAscii = isAscii(m_buffer.get(), kept + length);
    if (m_isBufferAscii && m_validator.complete()) {
        return true;
    }
    return m_validator.feed(fresh, length) && (!m_isAtEnd || m_validator.complete());
}

MotLine MotLineReader::take(std::size_t length) {
    constexpr std::array<std::uint8_t, 3> byteOrderMark{0xEF, 0xBB, 0xBF};
    const std::uint8_t* text = m_buffer.get() + m_position;
    const bool isMarked = m_offset + m_position == 0 && length >= byteOrderMark.size() &&
                          std::memcmp(text, byteOrderMark.data(), byteOrderMark.size()) == 0;
    m_position += length;
    if (isMarked) {
        text += byteOrderMark.size();
        length -= byteOrderMark.size();
    }
    return {text, length, m_isBufferAscii || isAscii(text, length)};
}

bool MotLineReader::next(MotLine& line) {
    while (!m_hasFailed) {
        const std::uint8_t* const text = m_buffer.get() + m_position;
        const std::size_t left = m_filled - m_position;
        const bool isBeginning = !m_isRestOfLine;
        const void* const lineFeed = std::memchr(text, '\n', left);
        if (lineFeed != nullptr) {
            line =
                take(static_cast<std::size_t>(static_cast<const std::uint8_t*>(lineFeed) - text));
            ++m_position;
            m_isRestOfLine = false;
            if (isBeginning) {
                return true;
            }
        } else if (isBeginning && (left >= reachBytes || (m_isAtEnd && left > 0))) {
            line = take(left);
            m_isRestOfLine = true;
            return true;
        } else if (m_isAtEnd) {
            return false;
        } else {
            m_position = isBeginning ? m_position : m_filled;
            m_hasFailed = !refill();
        }
    }
    return false;
}

bool MotLineReader::finish() {
    while (!m_hasFailed && !m_isAtEnd) {
        m_position = m_filled;
        m_hasFailed = !refill();
    }
    return !m_hasFailed;
}

} // namespace flashwriter
