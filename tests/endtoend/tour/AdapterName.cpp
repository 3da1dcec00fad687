#include "tests/endtoend/tour/AdapterName.h"

#include <filesystem>

namespace flashwriter::testing {

namespace {

const char* const NAME = "/dev/cu.usbserial-virtual";

} // namespace

AdapterName::AdapterName(const std::string& port) : m_path(port) {
    std::error_code refused;
    if (std::filesystem::is_symlink(NAME, refused) && !std::filesystem::exists(NAME, refused)) {
        std::filesystem::remove(NAME, refused); // left behind by somebody whose board has gone
    }
    std::filesystem::create_symlink(port, NAME, refused);
    if (!refused) {
        m_path = NAME;
        m_isLink = true;
    }
}

AdapterName::~AdapterName() {
    if (m_isLink) {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
}

} // namespace flashwriter::testing
