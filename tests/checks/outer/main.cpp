#include "sequence/context/ResultCode.h"
#include "sequence/context/ResultText.h"

int main() {
    return flashwriter::getResultText(flashwriter::RESULT_PORT_OPEN_ERROR).empty() ? 1 : 0;
}
