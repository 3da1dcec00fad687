#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter {

// One line without a line break that shows stage (see stageName()) and percentage in at most
// `columns` columns: "Writing data. (45 %) [#########           ]", in ASCII. Where that is too
// wide, first the bar gets shorter, then it goes, then the name; empty where not even the
// percentage fits.
std::string progressBar(std::int32_t step, std::int32_t percentage, std::size_t columns);

} // namespace flashwriter
