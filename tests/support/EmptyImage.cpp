#include "tests/support/EmptyImage.h"

#include "targetfile/NSTargetFile.h"

namespace flashwriter::testing {

bool imagesAreEmpty = false;

} // namespace flashwriter::testing

// The names by which the linker knows NSTargetFile::ReadFile(const std::string&).
#define READ_FILE(prefix)                                                                          \
    prefix##_ZN11flashwriter12NSTargetFile8ReadFileERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE

extern "C" {
flashwriter::ResultCode READ_FILE(__real_)(flashwriter::NSTargetFile* file,
                                           const std::string& path);

flashwriter::ResultCode READ_FILE(__wrap_)(flashwriter::NSTargetFile* file,
                                           const std::string& path) {
    if (!flashwriter::testing::imagesAreEmpty) {
        return READ_FILE(__real_)(file, path);
    }
    file->releaseData();
    return flashwriter::RESULT_OK;
}
}
