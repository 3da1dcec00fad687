// Writes an image into a virtual board through the desktop program's window, as a person would, and
// opens the serial monitor:
//   desktop-tour <flash-writer> <lines-preload.so> <image> <directory for pictures>
// Needs no display: it makes one of its own. Ends with 0 only when everything went as it should.
#include "tests/endtoend/tour/Tour.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: desktop-tour <flash-writer> <lines-preload.so> <image> "
                     "<directory for pictures>\n";
        return 2;
    }
    try {
        flashwriter::testing::Tour tour({argv[1], argv[2], argv[3], argv[4]});
        tour.fillForm();
        tour.write();
        tour.monitor();
        tour.quit();
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "FAILED: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
