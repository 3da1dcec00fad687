#include "tests/unit/targetfile/MotReference.h"

#include <algorithm>
#include <optional>
#include <string>

namespace flashwriter {

namespace {

using Characters = std::u32string;

// Decodes by value, then refuses what the shortest encoding of that value is not.
std::optional<Characters> decode(std::string_view text) {
    Characters characters;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 1;
        char32_t value = lead;
        if (lead >= 0x80) {
            length = lead >= 0xF0 ? 4 : (lead >= 0xE0 ? 3 : 2);
            if (lead < 0xC0 || lead >= 0xF8 || i + length > text.size()) {
                return std::nullopt;
            }
            value = lead % (1U << (7 - length));
            for (std::size_t j = 1; j < length; ++j) {
                const auto byte = static_cast<unsigned char>(text[i + j]);
                if (byte < 0x80 || byte > 0xBF) {
                    return std::nullopt;
                }
                value = (value * 0x40) + (byte - 0x80U);
            }
        }
        const std::size_t shortest =
            value < 0x80 ? 1 : (value < 0x800 ? 2 : (value < 0x10000 ? 3 : 4));
        if (shortest != length || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
            return std::nullopt;
        }
        characters.push_back(value);
        i += length;
    }
    return characters;
}

std::vector<Characters> split(Characters text) {
    if (!text.empty() && text.front() == 0xFEFF) {
        text.erase(0, 1);
    }
    std::vector<Characters> lines(1);
    for (const char32_t character : text) {
        if (character == U'\n') {
            lines.emplace_back();
        } else {
            lines.back().push_back(character);
        }
    }
    return lines;
}

std::uint32_t field(const Characters& line, std::size_t index, std::size_t length) {
    const Characters text = index < line.size() ? line.substr(index, length) : Characters();
    std::uint32_t value = 0;
    for (const char32_t character : text) {
        const std::size_t digit = std::u32string_view(U"0123456789abcdefABCDEF").find(character);
        if (digit == std::u32string_view::npos) {
            break;
        }
        value = (value * 16) + static_cast<std::uint32_t>(digit < 16 ? digit : digit - 6);
    }
    return value;
}

struct Record {
    std::uint32_t address = 0;
    std::uint32_t size = 0;
    std::uint32_t end = 0;
    Characters data;
};

// The records in front of the line that ends the scan; ended tells whether there is one.
std::vector<Record> records(const std::vector<Characters>& lines, bool& ended) {
    std::vector<Record> found;
    ended = false;
    for (const Characters& line : lines) {
        if (line.size() <= 9) {
            continue;
        }
        if (line[0] != U'S') {
            ended = true;
            break;
        }
        const std::uint32_t type = field(line, 1, 1);
        if (type == 1 || type == 2 || type == 3) {
            const std::size_t digits = (2 * type) + 2;
            Record record;
            record.address = field(line, 4, digits);
            record.size = field(line, 2, 2) - type - 2;
            record.end = record.address + record.size;
            record.data = line.size() > 4 + digits ? line.substr(4 + digits) : Characters();
            found.push_back(record);
        }
    }
    return found;
}

ResultCode store(const Record& record, MotReference& reference) {
    Bytes* image = &reference.program;
    std::uint64_t extent = reference.programExtent;
    std::uint32_t offset = record.address;
    if (record.end > reference.programExtent) {
        if (record.address < 0xF1000 || reference.dataExtent + 0xF1000 <= record.end) {
            return RESULT_DATA_FLASH_SIZE_ERROR;
        }
        image = &reference.data;
        extent = reference.dataExtent;
        offset -= 0xF1000;
    }
    if (offset > extent || record.size > extent - offset) {
        return RESULT_UNSUPPORTED_FORMAT;
    }
    for (std::uint32_t i = 0; i < record.size; ++i) {
        const auto byte = static_cast<std::uint8_t>(field(record.data, std::size_t{2} * i, 2));
        if (offset + i < image->size()) {
            image->at(offset + i) = byte;
        }
    }
    return RESULT_OK;
}

} // namespace

MotReference readMotReference(std::string_view contents) {
    MotReference reference;
    const std::optional<Characters> text = decode(contents);
    if (!text) {
        reference.measured = RESULT_FILE_READ_FAILED;
        return reference;
    }
    bool ended = false;
    const std::vector<Record> found = records(split(*text), ended);
    for (const Record& record : found) {
        std::uint64_t& extent =
            record.end > 0xF0FFF ? reference.dataExtent : reference.programExtent;
        extent = std::max<std::uint64_t>(extent, record.end);
    }
    if (ended || (reference.programExtent == 0 && reference.dataExtent == 0)) {
        reference.measured = RESULT_UNSUPPORTED_FORMAT;
        return reference;
    }
    reference.program.assign(reference.programExtent, 0xFF);
    reference.data.assign(std::min<std::uint64_t>(reference.dataExtent, 0x1000000), 0xFF);
    for (std::size_t i = 0; i < found.size() && reference.filled == RESULT_OK; ++i) {
        reference.filled = store(found[i], reference);
    }
    return reference;
}

} // namespace flashwriter
