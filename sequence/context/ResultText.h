#pragma once

#include <cstdint>
#include <string>

namespace flashwriter {

// The text of a result code, UTF-8. It begins with a blank and ends with a line feed, because the
// log appends it directly behind the line of the stage that it ends. Codes without a text of their
// own, negative ones included, share the text for unknown errors. Never fails.
std::string getResultText(std::int64_t code);

} // namespace flashwriter
