#include "console/ConsoleWrite.h"

int main(int argc, char** argv) {
    return flashwriter::consoleWrite(argc, argv);
}
