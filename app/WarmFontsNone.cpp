// Where the system keeps its fonts at hand.
#include "app/WarmFonts.h"

namespace flashwriter {

void warmFonts() {}

} // namespace flashwriter
