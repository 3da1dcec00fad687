#include "serial/DirectoryNames.h"

#include <dirent.h>

#include <memory>
#include <string_view>

namespace flashwriter {

namespace {

struct Closing {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

} // namespace

std::vector<std::string> directoryNames(const std::string& directory) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, Closing> open(::opendir(directory.c_str()));
    while (const dirent* entry = open ? ::readdir(open.get()) : nullptr) {
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

} // namespace flashwriter
