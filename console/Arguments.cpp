#include "console/Arguments.h"

#include "advice/Printable.h"
#include "console/HelpText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace flashwriter {

namespace {

struct Speed {
    std::string_view spelling;
    std::uint8_t index;
};

constexpr std::array SPEEDS{Speed{"115200", 0}, Speed{"115,200", 0}, Speed{"500000", 2},
                            Speed{"500,000", 2}};

struct Operands {
    std::string port;
    std::string speed;
    std::string file;
};

NoWrite refusal(const std::string& reason) {
    return {WRONG_ARGUMENTS, "flashwrite: " + printable(reason) + "\nTry: flashwrite --help\n"};
}

// What keeps a path out of its field of the context.
std::optional<NoWrite> store(char (&field)[260], const std::string& path, const std::string& name) {
    if (path.empty()) {
        return refusal(name + " is empty");
    }
    if (storePath(field, path) != RESULT_OK) {
        return refusal(name + " is " + std::to_string(path.size()) + " bytes long, at most " +
                       std::to_string(sizeof field - 1) + " fit: " + path);
    }
    return std::nullopt;
}

std::variant<_CONTEXTINFO, NoWrite> contextOf(const Operands& operands) {
    const auto* speed = std::ranges::find(SPEEDS, operands.speed, &Speed::spelling);
    if (speed == SPEEDS.end()) {
        return refusal("SPEED is 115200 or 500000, not \"" + operands.speed + "\"");
    }
    _CONTEXTINFO context{};
    context.BaudRate = speed->index;
    if (const auto refused = store(context.PortName, operands.port, "PORT")) {
        return *refused;
    }
    if (const auto refused = store(context.TargetFileInfo.FilePath, operands.file, "FILE")) {
        return *refused;
    }
    return context;
}

} // namespace

std::variant<_CONTEXTINFO, NoWrite> parseArguments(int argc, const char* const* argv) {
    Operands operands;
    CLI::App app("", "flashwrite");
    app.set_help_flag("--help");
    app.add_option("PORT", operands.port)->required();
    app.add_option("SPEED", operands.speed)->required();
    app.add_option("FILE", operands.file)->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return NoWrite{0, std::string(HELP_TEXT)};
    } catch (const CLI::ParseError& error) {
        return refusal(error.what());
    }
    return contextOf(operands);
}

} // namespace flashwriter
