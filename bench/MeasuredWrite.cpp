#include "bench/MeasuredWrite.h"

#include "board/VirtualBoard.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace flashwriter::bench {

namespace {

board::Bytes imageOf(std::size_t size) {
    board::Bytes bytes(size);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

// A file that goes with the object.
class TemporaryImage {
public:
    explicit TemporaryImage(const board::Bytes& bytes)
        : m_path(std::filesystem::temp_directory_path() /
                 ("flash-writer-bench-" + std::to_string(::getpid()) + ".bin")) {
        std::ofstream file(m_path, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        if (!file) {
            throw std::runtime_error("cannot write " + m_path.string());
        }
    }
    ~TemporaryImage() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    TemporaryImage(const TemporaryImage&) = delete;
    TemporaryImage& operator=(const TemporaryImage&) = delete;

    std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

[[noreturn]] void runProgram(const WriteSetup& setup, const std::string& port,
                             const std::string& image) {
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::setenv("LD_PRELOAD", setup.preload.c_str(), 1);
    ::execl(setup.program.c_str(), setup.program.c_str(), port.c_str(), setup.speed.c_str(),
            image.c_str(), nullptr);
    ::_exit(127);
}

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

MeasuredWrite measureWrite(const WriteSetup& setup) {
    const board::Bytes image = imageOf(setup.kib * 1024);
    const TemporaryImage file(image);
    board::BoardOptions options;
    options.target.flash.codeKib = 256;
    board::VirtualBoard target;
    target.start(options);

    const std::string port = target.portPath();
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        runProgram(setup, port, file.path());
    }
    int status = 0;
    rusage usage{};
    if (child == -1 || ::wait4(child, &status, 0, &usage) != child) {
        throw std::runtime_error("cannot run " + setup.program);
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    target.stop();

    MeasuredWrite write;
    const board::Bytes flash = target.codeFlash();
    write.verified = WIFEXITED(status) && WEXITSTATUS(status) == 0 && target.violations() == 0 &&
                     std::equal(image.begin(), image.end(), flash.begin());
    write.seconds = took.count();
    write.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    write.peakKib = usage.ru_maxrss;
    write.transcript = target.transcript();
    return write;
}

} // namespace flashwriter::bench
