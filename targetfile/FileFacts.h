// What can be told about an image file without reading it, for whoever has to explain why a write
// failed and what to do about it.
#pragma once

#include <cstdint>
#include <string>

namespace flashwriter {

enum class FileState : std::uint8_t {
    Missing,     // nothing stands at the path
    NotReadable, // the system refuses to look at it or to open it; FileFacts::error says why
    Directory,
    NotRegular, // a device, a FIFO, a socket: never opened
    Readable    // a regular file that opened for reading just now
};

enum class ImageKind : std::uint8_t { Bin, Mot, Other };

// The kind that a path (UTF-8) stands for by its extension alone, in any case of letters.
ImageKind imageKind(const std::string& path);

struct FileFacts {
    FileState state = FileState::Missing;
    int error = 0;                     // errno of Missing and NotReadable, otherwise 0
    std::uint32_t owner = 0;           // user id; 0 too where the file cannot be looked at
    std::uint64_t size = 0;            // bytes; meant for regular files only
    ImageKind kind = ImageKind::Other; // by the path's extension, whatever stands there
};

// Looks at path (UTF-8; symbolic links are followed). Never fails; the answer is as old as the
// call.
FileFacts fileFacts(const std::string& path);

// Reads the file at path, of a very large one only the beginning, and tells with which errno value
// that fails; 0 when it does not, now. Takes as long as a disk takes that fails.
int readError(const std::string& path);

} // namespace flashwriter
