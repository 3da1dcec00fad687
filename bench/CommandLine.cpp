#include "bench/CommandLine.h"

#include <cstdlib>
#include <string_view>

namespace flashwriter {

namespace {

bool parse(const char* text, double& number) {
    char* end = nullptr;
    number = std::strtod(text, &end);
    return end != text && *end == '\0' && number > 0;
}

} // namespace

bool takeRequiredSpeed(std::vector<char*>& arguments, double& number) {
    constexpr std::string_view option = "--require-mbps";
    number = 0;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::string_view text = *argument;
        if (text == option) {
            const auto value = argument + 1;
            const bool isGood = value != arguments.end() && parse(*value, number);
            arguments.erase(argument, isGood ? value + 1 : value);
            return isGood;
        }
        if (text.starts_with(option) && text.substr(option.size()).starts_with('=')) {
            const bool isGood = parse(*argument + option.size() + 1, number);
            arguments.erase(argument);
            return isGood;
        }
    }
    return true;
}

} // namespace flashwriter
