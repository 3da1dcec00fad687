#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

// What a target in programming mode can be asked about itself, and the three-byte quantities of
// the protocol.
class DeviceQueries {
public:
    explicit DeviceQueries(CommandLink& link) : m_link(link) {}

    // Each asks the target and stores the answer in the context, whole or not at all.
    // RESULT_RECEIVE_TIMEOUT: no answer, or one of another size; RESULT_COMMAND_FRAME_ABORT: the
    // target refused; RESULT_FRAME_FORMAT_ERROR, RESULT_SUM_ERROR: a damaged answer;
    // RESULT_SEND_FAILED. Of the two replies to a query only the first is waited for again.
    ResultCode comSiliconSignatureProc(); // into SiliconSignature
    ResultCode comSecrityGetProc();       // into SecurityGetInfo; no write asks for it

    // first | mid << 8 | low << 16: the first byte is the LEAST significant one. Given the bytes
    // in the order in which splitAddress returns them it yields the address reversed, and
    // BlockExchanges counts on that.
    static std::uint64_t makeAddress(std::uint8_t first, std::uint8_t mid, std::uint8_t low);

    // Bits 16-23, 8-15 and 0-7 of an address. Always RESULT_OK.
    static ResultCode splitAddress(std::uint64_t address, std::uint8_t& high, std::uint8_t& mid,
                                   std::uint8_t& low);

    // A firmware version of three digits as a number: 1, 2, 3 gives 1.23.
    static float makeFirmWareVersion(std::uint8_t major, std::uint8_t minor, std::uint8_t build);

private:
    CommandLink& m_link;
};

// An address split into its bytes, as commands carry it.
struct AddressBytes {
    explicit AddressBytes(std::uint64_t address) {
        DeviceQueries::splitAddress(address, high, mid, low);
    }
    std::uint8_t high = 0;
    std::uint8_t mid = 0;
    std::uint8_t low = 0;
};

} // namespace flashwriter
