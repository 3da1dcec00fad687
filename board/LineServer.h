#pragma once

#include "board/Descriptor.h"
#include "board/lines-preload/LineMessage.h"

#include <functional>
#include <string>
#include <vector>

#include <poll.h>

namespace flashwriter::board {

// Listens for requests for the lines of one port.
class LineServer {
public:
    // Throws std::system_error.
    explicit LineServer(const std::string& portPath);

    // Adds what has to be polled.
    void addTo(std::vector<pollfd>& entries) const;

    // Answers all requests that are there; never waits.
    void serve(const std::function<LineAnswer(const LineRequest&)>& answer);

private:
    Descriptor m_listener;
    std::vector<Descriptor> m_connections; // each brings one request
};

} // namespace flashwriter::board
