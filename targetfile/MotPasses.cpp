#include "targetfile/MotPasses.h"

#include <algorithm>

namespace flashwriter {

namespace {

// size: the image's; kept: how many bytes of it are there. 64-bit arithmetic: the record's own, in
// 32 bits, may have wrapped to an end that looks harmless.
ResultCode storeAt(std::uint64_t offset, const MotRecord& record, std::uint8_t* image,
                   std::uint64_t size, std::uint64_t kept) {
    if (offset + record.size > size) {
        return RESULT_UNSUPPORTED_FORMAT;
    }
    if (offset < kept) {
        const auto count = std::min<std::uint64_t>(record.size, kept - offset);
        record.line.hexBytes(record.dataIndex, count, image + offset);
    }
    return RESULT_OK;
}

} // namespace

ResultCode measureMotFile(const std::string& path, MotExtents& extents, std::size_t step) {
    MotRecordReader records(path, step);
    MotRecord record;
    MotExtents measured;
    while (records.next(record)) {
        // The end decides, so that a record which reaches into the data flash counts there whole.
        std::uint64_t& extent = record.end >= dataFlashAddress ? measured.data : measured.program;
        extent = std::max<std::uint64_t>(extent, record.end);
    }
    const ResultCode result = records.finish();
    if (result != RESULT_FILE_READ_FAILED) {
        extents = measured;
    }
    return result;
}

ResultCode storeMotRecord(const MotRecord& record, const MotImages& images) {
    const bool isProgram = record.end <= images.programSize;
    if (!isProgram &&
        (record.address < dataFlashAddress || images.dataSize + dataFlashAddress <= record.end)) {
        return RESULT_DATA_FLASH_SIZE_ERROR;
    }
    // The data image decides for code flash too: without it, there are no images.
    if (images.data == nullptr) {
        return RESULT_OK;
    }
    if (isProgram) {
        return storeAt(record.address, record, images.program, images.programSize,
                       images.programSize);
    }
    return storeAt(record.address - dataFlashAddress, record, images.data, images.dataSize,
                   keptOfDataImage(images.dataSize));
}

ResultCode fillMotImages(const std::string& path, const MotImages& images, std::size_t step) {
    MotRecordReader records(path, step);
    MotRecord record;
    ResultCode stored = RESULT_OK;
    while (stored == RESULT_OK && records.next(record)) {
        stored = storeMotRecord(record, images);
    }
    const ResultCode read = records.finish();
    return read != RESULT_OK ? read : stored;
}

} // namespace flashwriter
