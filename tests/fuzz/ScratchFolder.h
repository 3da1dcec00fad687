// A folder for a target's files, which goes with them when the target ends.
#pragma once

#include "tests/fuzz/Require.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace flashwriter::fuzz {

class ScratchFolder {
public:
    ScratchFolder() : m_path(std::filesystem::temp_directory_path() / "fuzz-XXXXXX") {
        require(::mkdtemp(m_path.data()) != nullptr, "there is a folder for files");
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return m_path + "/" + name; }
    const std::string& path() const { return m_path; }

    // Whether there is a file of this name now; the system does not take every name.
    bool create(const std::string& name) const {
        return static_cast<bool>(std::ofstream(path(name)).put('\n'));
    }

private:
    std::string m_path;
};

} // namespace flashwriter::fuzz
