#include "targetfile/FileFacts.h"

#include "targetfile/FileReader.h"
#include "targetfile/PathExtension.h"

#include <array>
#include <cerrno>
#include <sys/stat.h>

namespace flashwriter {

namespace {

// No image that can be written needs a longer file, unless most of it is comments.
constexpr std::uint64_t MOST_READ = 64UL * 1024 * 1024;

// The state that belongs to an errno value of looking at a path or of opening it.
FileState stateOfError(int error) {
    switch (error) {
    case 0:
        return FileState::Readable;
    case ENOENT:
    case ENOTDIR:
        return FileState::Missing;
    case EISDIR:
        return FileState::Directory;
    default:
        return FileState::NotReadable;
    }
}

} // namespace

ImageKind imageKind(const std::string& path) {
    if (hasPathExtension(path, "bin")) {
        return ImageKind::Bin;
    }
    return hasPathExtension(path, "mot") ? ImageKind::Mot : ImageKind::Other;
}

FileFacts fileFacts(const std::string& path) {
    FileFacts facts;
    facts.kind = imageKind(path);
    struct stat status {};
    if (path.find('\0') == std::string::npos && ::stat(path.c_str(), &status) == 0) {
        facts.owner = status.st_uid;
        facts.size = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    }
    if (status.st_mode != 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        facts.state = FileState::NotRegular;
        return facts;
    }
    const FileReader reader(path);
    facts.state = stateOfError(reader.error());
    if (facts.state == FileState::Missing || facts.state == FileState::NotReadable) {
        facts.error = reader.error();
    }
    return facts;
}

int readError(const std::string& path) {
    const FileReader file(path);
    std::array<std::uint8_t, 16384> piece{};
    for (std::uint64_t offset = 0; offset < MOST_READ; offset += piece.size()) {
        const std::int64_t count = file.readAt(offset, piece.data(), piece.size());
        if (count < 0) {
            return file.isOpen() ? errno : file.error();
        }
        if (count < static_cast<std::int64_t>(piece.size())) {
            break;
        }
    }
    return 0;
}

} // namespace flashwriter
