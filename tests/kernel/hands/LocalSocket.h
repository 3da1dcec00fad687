#pragma once

#include <optional>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>

namespace flashwriter::kernel {

// The address of a local socket by its path. Throws std::invalid_argument for one that is too long.
class LocalAddress {
public:
    explicit LocalAddress(const std::string& path);
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&m_address); }
    static socklen_t size() { return sizeof(sockaddr_un); }

private:
    sockaddr_un m_address{};
};

// A connected socket that lines pass over. One thread at a time.
class LineSocket {
public:
    explicit LineSocket(int descriptor) : m_descriptor(descriptor) {} // takes it over
    ~LineSocket();
    LineSocket(const LineSocket&) = delete;
    LineSocket& operator=(const LineSocket&) = delete;

    // The next line, without its end; nothing when the other side is gone or says nothing for
    // longer than the socket allows.
    std::optional<std::string> read();
    bool write(const std::string& line); // false when the other side is gone

private:
    int m_descriptor;
    std::string m_unread;
};

} // namespace flashwriter::kernel
