#pragma once

#include "tests/unit/targetfile/MotReference.h"

#include <cstddef>
#include <string>

namespace flashwriter {

// What the program's two passes make of the file at path when they read it by step bytes at a time,
// put as the reference puts it. Images beyond 16 MiB are not filled, as in the class.
MotReference readByPasses(const std::string& path, std::size_t step);

} // namespace flashwriter
