#include "tests/kernel/guest/channel/Command.h"

#include <stdexcept>
#include <string_view>

namespace flashwriter::kernel {

namespace {

// Texts that end with a zero byte, one after the other.
void append(std::string& body, std::string_view text) {
    body += text;
    body += '\0';
}

std::string takeText(std::string_view& rest) {
    const std::size_t end = rest.find('\0');
    if (end == std::string_view::npos) {
        throw std::runtime_error("a command that stops short");
    }
    std::string text(rest.substr(0, end));
    rest.remove_prefix(end + 1);
    return text;
}

} // namespace

std::string encode(const Command& command) {
    std::string body;
    append(body, std::to_string(command.user));
    append(body, command.hasInput ? "1" : "0");
    append(body, std::to_string(command.arguments.size()));
    for (const auto* texts : {&command.arguments, &command.environment}) {
        for (const std::string& text : *texts) {
            append(body, text);
        }
    }
    return body;
}

Command decodeCommand(const std::string& body) {
    std::string_view rest = body;
    Command command;
    command.user = static_cast<unsigned int>(std::stoul(takeText(rest)));
    command.hasInput = takeText(rest) == "1";
    const std::size_t arguments = std::stoul(takeText(rest));
    while (!rest.empty()) {
        const bool isArgument = command.arguments.size() < arguments;
        (isArgument ? command.arguments : command.environment).push_back(takeText(rest));
    }
    return command;
}

} // namespace flashwriter::kernel
