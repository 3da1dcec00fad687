// A directory of its own for every test that needs files.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace flashwriter {

// Made on construction, passable for every user, removed with all that is in it on destruction.
class TempDir {
public:
    TempDir() : m_path(::testing::TempDir() + "targetfile-XXXXXX") {
        if (::mkdtemp(m_path.data()) == nullptr) {
            throw std::runtime_error("no temporary directory at " + m_path);
        }
        using std::filesystem::perms;
        std::filesystem::permissions(m_path,
                                     perms::owner_all | perms::group_exec | perms::others_exec);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string path(std::string_view name) const { return m_path + "/" + std::string(name); }

    // Writes a file, in place of any earlier one of that name, and returns its path.
    std::string write(std::string_view name, std::string_view contents) const {
        std::string file = path(name);
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        stream.close();
        if (!stream) {
            throw std::runtime_error("cannot write " + file);
        }
        return file;
    }

private:
    std::string m_path;
};

} // namespace flashwriter
