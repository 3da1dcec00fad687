#pragma once

#include <string>
#include <vector>

namespace flashwriter {

// What is in a directory, without the names of itself and of the one above, in no order; what comes
// or goes meanwhile may be there or not. Empty when it cannot be read. The standard library's
// iterator is not used for it: it ends the program when memory runs out.
std::vector<std::string> directoryNames(const std::string& directory);

} // namespace flashwriter
