#include "advice/AdviceParts.h"

#include <array>
#include <cstdio>

namespace flashwriter {

namespace {

constexpr std::size_t LONGEST_PATH = sizeof(_CONTEXTINFO::PortName) - 1;
static_assert(LONGEST_PATH == sizeof(_TARGETFILEINFO::FilePath) - 1);

} // namespace

std::string firstOf(std::initializer_list<std::string> texts) {
    for (const std::string& text : texts) {
        if (!text.empty()) {
            return text;
        }
    }
    return "";
}

std::string unknownAdvice(ResultCode result) {
    std::array<char, 192> text{};
    std::snprintf(text.data(), text.size(),
                  "Result 0x%08llX has no explanation here: start the program with standard error "
                  "going to a file, do the same again, and see what the diagnostics in it say.",
                  static_cast<unsigned long long>(result));
    return text.data();
}

bool isTooLong(const std::string& path) {
    return path.size() > LONGEST_PATH;
}

std::string longPathAdvice(const std::string& owner, const std::string& path) {
    return "The path of the " + owner + " has " + std::to_string(path.size()) +
           " bytes, and at most " + std::to_string(LONGEST_PATH) +
           " fit: use a shorter one, such as that of a link to it.";
}

} // namespace flashwriter
