#include "sequence/context/ContextInfo.h"

#include <algorithm>

namespace flashwriter {

ResultCode storePath(char (&field)[260], const std::string& text) {
    if (text.size() >= sizeof field || text.find('\0') != std::string::npos) {
        return RESULT_PARAMETER_ERROR;
    }
    std::ranges::fill(field, '\0');
    std::ranges::copy(text, field);
    return RESULT_OK;
}

} // namespace flashwriter
