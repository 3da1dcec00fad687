// A large S-record file to read.
#pragma once

#include <cstdint>
#include <string>

namespace flashwriter {

// A file in a temporary directory of its own, removed with everything in that directory when the
// object goes. It has S3 records of 32 data bytes, in the order of their addresses and none twice
// (objcopy wants it so), and fills images that extend to 16 MiB, the most that is kept: 41 MB of
// text. Only the record that would lie across the start of data flash is left out.
class MotSample {
public:
    // Throws what the file system reports.
    MotSample();
    ~MotSample();
    MotSample(const MotSample&) = delete;
    MotSample& operator=(const MotSample&) = delete;

    const std::string& path() const { return m_path; }
    std::string pathBeside(const std::string& name) const { return m_directory + "/" + name; }
    std::uint64_t textSize() const { return m_textSize; } // bytes

private:
    std::string m_directory;
    std::string m_path;
    std::uint64_t m_textSize = 0;
};

} // namespace flashwriter
