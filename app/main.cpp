#include "app/Program.h"

int main(int argc, char** argv) {
    return flashwriter::runProgram(argc, argv);
}
