// Works a program's window through the hands that are loaded into it:
//   window-hands SOCKET COMMAND [OPERAND...]   one command
//   window-hands SOCKET                        commands from standard input, one line for each
// Prints one line for each answer, words separated by tabs. Ends with 0 if the last one was not
// refused, 1 if it was, 2 if there was none.
#include "tests/kernel/hands/WindowHands.h"

#include <chrono>
#include <exception>
#include <iostream>

namespace {

using flashwriter::kernel::WindowHands;
using flashwriter::kernel::Words;

// A machine in a machine may take its time to start a program.
constexpr std::chrono::minutes PATIENCE{2};

bool tell(const WindowHands::Exchange& exchange, const std::string& command) {
    const std::string answer = exchange(command);
    std::cout << answer << std::endl; // at once: somebody may wait for it at a pipe
    return flashwriter::kernel::wordsOf(answer).front() == flashwriter::kernel::DONE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: window-hands SOCKET [COMMAND [OPERAND...]]\n";
        return 2;
    }
    try {
        const auto exchange = flashwriter::kernel::connectTo(argv[1], PATIENCE);
        bool isDone = true;
        if (argc > 2) {
            isDone = tell(exchange, flashwriter::kernel::lineOf(Words(argv + 2, argv + argc)));
        } else {
            for (std::string line; std::getline(std::cin, line);) {
                isDone = tell(exchange, line);
            }
        }
        return isDone ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "window-hands: " << error.what() << '\n';
        return 2;
    }
}
