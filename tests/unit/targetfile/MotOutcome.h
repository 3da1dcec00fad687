#pragma once

#include "tests/unit/targetfile/MotReference.h"

#include <cstddef>
#include <string>

namespace flashwriter {

// What the program's two passes make of the file at path when they read it by step bytes at a time,
// put as the reference puts it: the first 16 MiB of the data image are kept, as in the class.
MotReference readByPasses(const std::string& path, std::size_t step);

} // namespace flashwriter
