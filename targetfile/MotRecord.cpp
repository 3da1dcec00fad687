#include "targetfile/MotRecord.h"

namespace flashwriter {

namespace {

constexpr std::size_t longestIgnoredLine = 9;

MotRecord recordOf(std::uint32_t type, const MotLine& line) {
    MotRecord record;
    const std::size_t addressLength = (2 * type) + 2;
    record.address = line.hex(4, addressLength);
    record.size = line.hex(2, 2) - type - 2;
    record.end = record.address + record.size;
    record.dataIndex = 4 + addressLength;
    record.line = line;
    return record;
}

} // namespace

bool MotRecordReader::next(MotRecord& record) {
    MotLine line;
    while (m_result == RESULT_OK && m_lines.next(line)) {
        if (!line.isLongerThan(longestIgnoredLine)) {
            continue;
        }
        if (!line.startsWith('S')) {
            m_result = RESULT_UNSUPPORTED_FORMAT;
            return false;
        }
        const std::uint32_t type = line.hex(1, 1);
        if (type >= 1 && type <= 3) {
            record = recordOf(type, line);
            return true;
        }
    }
    return false;
}

ResultCode MotRecordReader::finish() {
    return m_lines.finish() ? m_result : RESULT_FILE_READ_FAILED;
}

} // namespace flashwriter
