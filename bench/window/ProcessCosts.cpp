#include "bench/window/ProcessCosts.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

namespace flashwriter::bench {

namespace {

std::string contentsOf(pid_t process, const char* name) {
    std::ifstream file("/proc/" + std::to_string(process) + "/" + name);
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (text.empty()) {
        throw std::runtime_error("a program has ended that is to be measured");
    }
    return text;
}

} // namespace

std::int64_t processorTicks(pid_t process) {
    constexpr int FIELDS_BEFORE = 11; // between the program's name in parentheses and the times
    const std::string text = contentsOf(process, "stat");
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string skipped;
    for (int i = 0; i < FIELDS_BEFORE; ++i) {
        fields >> skipped;
    }
    std::int64_t user = 0;
    std::int64_t system = 0;
    if (!(fields >> user >> system)) {
        throw std::runtime_error("the system does not tell a program's processor time");
    }
    return user + system;
}

double peakMib(pid_t process) {
    constexpr const char* NAME = "VmHWM:"; // its value is in KiB
    const std::string text = contentsOf(process, "status");
    const std::size_t at = text.find(NAME);
    if (at == std::string::npos) {
        throw std::runtime_error("the system does not tell a program's memory");
    }
    return std::stod(text.substr(at + std::char_traits<char>::length(NAME))) / 1024.0;
}

} // namespace flashwriter::bench
