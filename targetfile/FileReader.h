// The one door through which image files are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter {

// A regular file, open for reading until the object goes.
//
// Nothing else is ever opened: reading a FIFO could wait for ever, and merely opening a serial
// device moves its modem lines, which resets boards. The file is read rather than mapped, because a
// mapped file that another program truncates takes this one down with it.
class FileReader {
public:
    // Opens the file at path (UTF-8; symbolic links are followed); isOpen() tells whether it did.
    explicit FileReader(const std::string& path);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }

    // Why the file is not open, as an errno value: EISDIR for a directory, EINVAL for anything else
    // that is not a regular file; 0 when it is open.
    int error() const { return m_error; }

    // Reads size bytes from offset (in bytes from the file's beginning) into buffer, which the
    // caller owns. Returns how many there were, fewer than size only at the file's end; -1 when the
    // file is not open or the system reports an error, which is in errno then.
    std::int64_t readAt(std::uint64_t offset, std::uint8_t* buffer, std::size_t size) const;

private:
    int m_descriptor = -1;
    int m_error = 0;
};

} // namespace flashwriter
