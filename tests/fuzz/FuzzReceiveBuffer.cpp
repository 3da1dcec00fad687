// The transport's receive buffer against a queue, in any order of the operations.
//
// Input: operations, each a byte that chooses and, where it needs a size, two bytes of it, low byte
// first.
#include "sequence/context/DiagnosticLog.h"
#include "serial/NSSerialPortProcessor.h"
#include "tests/fuzz/Require.h"
#include "tests/support/PseudoTerminal.h"

#include <algorithm>
#include <deque>
#include <thread>
#include <vector>

namespace flashwriter::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t CAPACITY = 1023;
constexpr std::uint8_t REOPEN = 0xFF; // rare, for it takes as long as hundreds of the others

// A transport whose receive thread has ended: the target alone appends and takes.
class OpenPort {
public:
    OpenPort() {
        m_terminal.makeRaw();
        open();
    }
    void open() {
        require(port.Open(m_terminal.portPath()) == RESULT_OK, "the port opens");
        while (!port.IsReading()) {
            std::this_thread::yield();
        }
        port.setRecvLoopFlag(false);
    }

    NSSerialPortProcessor port;

private:
    flashwriter::testing::PseudoTerminal m_terminal;
};

class Run {
public:
    explicit Run(OpenPort& open) : m_open(open), m_port(open.port) {}

    void append(std::uint64_t size);
    void appendAbsurd(std::uint64_t size);
    void take(std::uint64_t size);
    void peek() const;
    void empty(bool alsoDevice);
    void reopen();

    // Leaves the ring empty and where it began, so that each input finds the same.
    void end();

private:
    Bytes next(std::uint64_t size);

    OpenPort& m_open;
    NSSerialPortProcessor& m_port;
    std::deque<std::uint8_t> m_model;
    std::uint64_t m_appended = 0;
    std::uint8_t m_next = 1; // counts past 255 to 0, and no two blocks of 1024 are alike
    bool m_hasReopened = false;
};

Bytes Run::next(std::uint64_t size) {
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes) {
        byte = m_next;
        m_next = static_cast<std::uint8_t>(m_next % 251 + 1);
    }
    return bytes;
}

void Run::append(std::uint64_t size) {
    const Bytes bytes = next(size);
    const bool fits = m_model.size() + size <= CAPACITY;
    require(m_port.setReadData(bytes.data(), size) == (fits ? RESULT_OK : RESULT_BUFFER_OVERFLOW),
            "what fits is stored, and nothing else");
    if (fits) {
        m_model.insert(m_model.end(), bytes.begin(), bytes.end());
        m_appended += size;
    }
}

void Run::appendAbsurd(std::uint64_t size) {
    const std::uint8_t byte = 0;
    require(m_port.setReadData(&byte, size) == RESULT_BUFFER_OVERFLOW, "an absurd size is refused");
}

void Run::take(std::uint64_t size) {
    const bool isThere = size <= m_model.size();
    Bytes bytes(isThere ? size : 0); // nothing may be written where there is too little
    require(m_port.GetReceivedData(bytes.data(), bytes.size(), size) == bytes.size(),
            "all that is wanted is taken, or nothing");
    const auto end = m_model.begin() + static_cast<std::ptrdiff_t>(bytes.size());
    require(std::equal(bytes.begin(), bytes.end(), m_model.begin(), end),
            "the first bytes, in order");
    m_model.erase(m_model.begin(), end);
}

void Run::peek() const {
    require(m_port.GetReceiveDataLength() == m_model.size(), "the length");
    std::uint8_t type = 0;
    std::uint64_t length = UINT64_MAX;
    require(m_port.CheckDataFrame(type, length) == RESULT_OK, "a look always succeeds");
    if (m_model.size() >= 2) {
        require(type == m_model[0] && length == m_model[1], "the first two bytes");
    }
}

void Run::empty(bool alsoDevice) {
    if (alsoDevice) {
        m_port.ClearReceiveBuffer();
    } else {
        m_port.clearReadData();
    }
    m_model.clear();
}

// A closed port counts its bytes on and gives none of them.
void Run::reopen() {
    if (m_hasReopened) {
        return;
    }
    m_hasReopened = true;
    m_port.Close();
    require(m_port.GetReceiveDataLength() == m_model.size(), "the length after closing");
    std::uint8_t byte = 0;
    require(m_port.GetReceivedData(&byte, 1, 1) == 0, "a closed port gives nothing");
    require(m_port.setReadData(&byte, 1) == RESULT_BUFFER_OVERFLOW, "a closed port stores nothing");
    std::uint64_t length = 0;
    m_port.CheckDataFrame(byte, length);
    m_open.open();
    require(m_port.GetReceiveDataLength() == m_model.size(), "the length after opening again");
    empty(true);
}

void Run::end() {
    peek();
    empty(false);
    const std::uint64_t rest = 1024 - m_appended % 1024;
    for (const std::uint64_t part : {rest / 2, rest - rest / 2}) {
        append(part);
        take(part);
    }
    peek();
}

void perform(Run& operations, std::uint8_t choice, std::uint64_t amount) {
    if (choice == REOPEN) {
        operations.reopen();
        return;
    }
    switch (choice % 7) {
    case 0:
        operations.append(amount % 1100);
        break;
    case 1:
        operations.append(amount % 40);
        break;
    case 2:
        operations.take(amount % 1100);
        break;
    case 3:
        operations.take(amount % 40);
        break;
    case 4:
        operations.appendAbsurd(UINT64_MAX - amount);
        break;
    case 5:
        operations.take(UINT64_MAX - amount);
        break;
    default:
        operations.empty(amount % 2 == 1);
        break;
    }
}

void run(OpenPort& open, const std::uint8_t* bytes, std::size_t size) {
    Run operations(open);
    const std::uint8_t* const end = bytes + size;
    while (end - bytes >= 3) {
        const auto amount = static_cast<std::uint64_t>(bytes[1] + bytes[2] * 0x100U);
        perform(operations, *bytes, amount);
        operations.peek();
        bytes += 3;
    }
    operations.end();
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    flashwriter::setDiagnosticSink([](const char*) {});
    static flashwriter::fuzz::OpenPort open;
    flashwriter::fuzz::run(open, bytes, size);
    return 0;
}
