#include "bench/Objcopy.h"

#include <array>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

// Not every system's headers declare it.
extern char** environ; // NOLINT(readability-redundant-declaration)

namespace flashwriter {

bool runObjcopy(const std::string& motPath, const std::string& rawPath) {
    std::array<std::string, 7> words = {"objcopy", "-I", "srec", "-O", "binary", motPath, rawPath};
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (::posix_spawnp(&process, "objcopy", nullptr, nullptr, arguments.data(), environ) != 0) {
        return false;
    }
    int status = 0;
    return ::waitpid(process, &status, 0) == process && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

} // namespace flashwriter
