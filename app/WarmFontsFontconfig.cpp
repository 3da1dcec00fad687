// Where the toolkit has its fonts from fontconfig, which reads them once for the whole process.
#include "app/WarmFonts.h"

#include <fontconfig/fontconfig.h>

namespace flashwriter {

void warmFonts() {
    FcInit(); // what it cannot do the toolkit tries again
}

} // namespace flashwriter
