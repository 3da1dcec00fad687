#pragma once

#include <string_view>

namespace flashwriter {

// What --help prints.
extern const std::string_view HELP_TEXT;

} // namespace flashwriter
