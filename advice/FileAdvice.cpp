#include "advice/AdviceParts.h"

#include <cerrno>
#include <cstring>

namespace flashwriter {

namespace {

constexpr std::uint64_t LARGEST_RAW_IMAGE = 262144;

std::string diskAdvice(const FailureFacts& facts, int error) {
    return facts.filePath + " could not be read to its end: " + std::strerror(error) +
           ". Its disk may be failing: put the image on another disk, or build it again there.";
}

std::string refusedFileAdvice(const FailureFacts& facts) {
    const std::string& path = facts.filePath;
    const std::string reason = std::strerror(facts.file.error);
    switch (facts.file.error) {
    case EACCES:
    case EPERM:
        return path + " may not be read: " + reason + ". Check its permissions.";
    case EIO:
        return diskAdvice(facts, EIO);
    case ELOOP:
        return path + " leads nowhere: a link on the way leads back to itself, or there are too "
                      "many of them. Name the image itself, or make the link again.";
    case ENAMETOOLONG:
        return path + " is a longer path than the system takes: check it, or move the image to "
                      "where its path is shorter.";
    case EMFILE:
    case ENFILE:
    case ENOMEM:
        return path + " cannot be opened now: " + reason +
               ". Close other programs, or start this one again.";
    default:
        return path + " cannot be opened: " + reason +
               ". Check the disk that it is on, or put the image on another.";
    }
}

// Why a file could not be read; empty when it can be, now.
std::string unreadableAdvice(const FailureFacts& facts) {
    switch (facts.file.state) {
    case FileState::Missing:
        return "No such file: " + facts.filePath + ". Check the path.";
    case FileState::NotReadable:
        return refusedFileAdvice(facts);
    case FileState::Directory:
        return facts.filePath + " is a directory: name the image in it.";
    case FileState::NotRegular:
        return facts.filePath + " is not a regular file: images are read from those only.";
    case FileState::Readable:
        return "";
    }
    return "";
}

std::string changedAdvice(const FailureFacts& facts) {
    return facts.filePath + " was not as it is now when it was to be read: write again.";
}

std::string otherKindAdvice(const FailureFacts& facts) {
    return facts.filePath + " ends neither in .bin nor in .mot: name a raw image .bin, and an "
                            "S-record file .mot.";
}

std::string formatAdvice(const FailureFacts& facts) {
    switch (facts.file.kind) {
    case ImageKind::Other:
        return otherKindAdvice(facts);
    case ImageKind::Mot:
        return facts.filePath + " is no S-record file that can be written: it has a line that does "
                                "not begin with S, a record with an impossible address or length, "
                                "or no records. Build it again.";
    case ImageKind::Bin:
        return changedAdvice(facts);
    }
    return "";
}

// What is wrong with the file's size; empty when nothing is, now. An S-record file may have any.
std::string sizeAdvice(const FailureFacts& facts) {
    if (facts.file.size == 0) {
        return facts.filePath + " is empty: build it again.";
    }
    return facts.file.kind == ImageKind::Mot || facts.file.size <= LARGEST_RAW_IMAGE
               ? ""
               : facts.filePath + " has " + std::to_string(facts.file.size) +
                     " bytes, and a raw image has at most " + std::to_string(LARGEST_RAW_IMAGE) +
                     ": choose the image itself, or build it smaller.";
}

std::string readAdvice(const FailureFacts& facts) {
    if (facts.readError != 0) {
        return diskAdvice(facts, facts.readError);
    }
    if (facts.file.kind == ImageKind::Mot) {
        return facts.filePath + " could not be read as text: an S-record file is plain text, and "
                                "its images must fit into memory. Build it again, on another disk "
                                "if that does not help.";
    }
    return facts.filePath +
           " could not be read to its end: copy it to another disk and write that.";
}

std::string tooLongAdvice(const FailureFacts& facts) {
    const bool areKnown = facts.codeSize != 0 && facts.codeFlashSize != 0;
    const std::string sizes = areKnown ? " needs " + std::to_string(facts.codeSize) +
                                             " bytes of code flash, and this board has " +
                                             std::to_string(facts.codeFlashSize)
                                       : " does not fit into this board's code flash";
    return facts.filePath + sizes + ": it is made for another board, or has to become smaller.";
}

} // namespace

std::string fileObstacle(const FailureFacts& facts) {
    const bool isOther = facts.file.kind == ImageKind::Other;
    return firstOf({unreadableAdvice(facts), isOther ? otherKindAdvice(facts) : sizeAdvice(facts)});
}

std::string fileAdvice(ResultCode result, const FailureFacts& facts) {
    const std::string unreadable = unreadableAdvice(facts);
    switch (result) {
    case RESULT_FILE_NOT_FOUND:
        return firstOf({unreadable, changedAdvice(facts)});
    case RESULT_UNSUPPORTED_FORMAT:
        return formatAdvice(facts);
    case RESULT_FILE_SIZE_ERROR:
        return firstOf({unreadable, sizeAdvice(facts), changedAdvice(facts)});
    case RESULT_FILE_READ_FAILED:
        return firstOf({unreadable, readAdvice(facts)});
    case RESULT_CODE_FLASH_SIZE_ERROR:
        return tooLongAdvice(facts);
    case RESULT_DATA_FLASH_SIZE_ERROR:
        return facts.filePath + " has S-records that reach into data flash (0xF1000 and above), "
                                "which is never written: leave them out when building it.";
    case RESULT_CODE_FLASH_ADDRESS_ERROR:
        return "The code in " + facts.filePath +
               " begins where the board's code flash does not: link it for address 0.";
    case RESULT_DATA_FLASH_ADDRESS_ERROR:
        return "The data in " + facts.filePath +
               " begins where the board's data flash does not: link it for address 0xF1000.";
    default:
        return "";
    }
}

} // namespace flashwriter
