#include "board/LineSpeed.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace flashwriter::board {

std::uint32_t readLineSpeed(int master) {
    termios2 settings{};
    if (ioctl(master, TCGETS2, &settings) != 0) {
        return 0;
    }
    return settings.c_ospeed;
}

} // namespace flashwriter::board
