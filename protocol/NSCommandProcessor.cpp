#include "protocol/NSCommandProcessor.h"

#include <algorithm>
#include <new>

namespace flashwriter {

ResultCode NSCommandProcessor::Initialize() {
    m_pbCmdFlames.reset(new (std::nothrow) std::uint8_t[FRAME_BUFFER_SIZE]());
    m_pbDataFlames.reset(new (std::nothrow) std::uint8_t[FRAME_BUFFER_SIZE]());
    if (!m_pbCmdFlames || !m_pbDataFlames) {
        m_pbCmdFlames.reset();
        m_pbDataFlames.reset();
        return RESULT_INIT_FAILED;
    }
    return RESULT_OK;
}

ResultCode NSCommandProcessor::MakeResetCommand(std::uint64_t& cmdLength) {
    return makeCommand({COM_RESET}, cmdLength);
}

ResultCode NSCommandProcessor::MakeBaudRateCommand(std::uint8_t bD01, std::uint8_t setVoltage,
                                                   std::uint64_t& cmdLength) {
    if (!clearCommandFrame(cmdLength)) {
        return RESULT_INIT_FAILED;
    }
    if (bD01 > MAX_SPEED_INDEX) {
        return RESULT_PARAMETER_ERROR;
    }
    return makeCommand({COM_BAUD_RATE_SET, bD01, setVoltage}, cmdLength);
}

ResultCode NSCommandProcessor::MakeBlockEraseCommand(std::uint8_t bSal, std::uint8_t bSam,
                                                     std::uint8_t bSah, std::uint64_t& cmdLength) {
    return makeCommand({COM_BLOCK_ERASE, bSal, bSam, bSah}, cmdLength);
}

ResultCode NSCommandProcessor::MakeSecurityGetCommand(std::uint64_t& cmdLength) {
    return makeCommand({COM_SECURITY_GET}, cmdLength);
}

ResultCode NSCommandProcessor::MakeSiliconSignatureCommand(std::uint64_t& cmdLength) {
    return makeCommand({COM_SILICON_SIGNATURE}, cmdLength);
}

ResultCode NSCommandProcessor::MakeBlockBlankCheckCommand(std::uint8_t bSal, std::uint8_t bSam,
                                                          std::uint8_t bSah, std::uint8_t bEal,
                                                          std::uint8_t bEam, std::uint8_t bEah,
                                                          std::uint8_t bD01,
                                                          std::uint64_t& cmdLength) {
    return makeCommand({COM_BLOCK_BLANK_CHECK, bSal, bSam, bSah, bEal, bEam, bEah, bD01},
                       cmdLength);
}

ResultCode NSCommandProcessor::makeAddressRangeCommand(std::uint8_t bCom, std::uint8_t bSal,
                                                       std::uint8_t bSam, std::uint8_t bSah,
                                                       std::uint8_t bEal, std::uint8_t bEam,
                                                       std::uint8_t bEah,
                                                       std::uint64_t& cmdLength) {
    return makeCommand({bCom, bSal, bSam, bSah, bEal, bEam, bEah}, cmdLength);
}

ResultCode NSCommandProcessor::MakeProgrammingCommand(std::uint8_t bSal, std::uint8_t bSam,
                                                      std::uint8_t bSah, std::uint8_t bEal,
                                                      std::uint8_t bEam, std::uint8_t bEah,
                                                      std::uint64_t& cmdLength) {
    return makeAddressRangeCommand(COM_PROGRAMMING, bSal, bSam, bSah, bEal, bEam, bEah, cmdLength);
}

ResultCode NSCommandProcessor::MakeChecksumCommand(std::uint8_t bSal, std::uint8_t bSam,
                                                   std::uint8_t bSah, std::uint8_t bEal,
                                                   std::uint8_t bEam, std::uint8_t bEah,
                                                   std::uint64_t& cmdLength) {
    return makeAddressRangeCommand(COM_CHECKSUM, bSal, bSam, bSah, bEal, bEam, bEah, cmdLength);
}

ResultCode NSCommandProcessor::makeDataFrame(const std::uint8_t* data, std::uint64_t length,
                                             bool finalFrame, std::uint64_t& cmdLength) {
    if (!clearCommandFrame(cmdLength)) {
        return RESULT_INIT_FAILED;
    }
    if (length > MAX_PAYLOAD || (data == nullptr && length > 0)) {
        return RESULT_PARAMETER_ERROR;
    }
    std::copy_n(data, length, &m_pbCmdFlames[PAYLOAD_OFFSET]);
    m_pbCmdFlames[0] = STX;
    closeFrame(length, finalFrame ? ETX : ETB, cmdLength);
    return RESULT_OK;
}

ResultCode NSCommandProcessor::MakeProgrammingDataFrame(const std::uint8_t* data,
                                                        std::uint64_t length,
                                                        std::uint64_t finalFrame,
                                                        std::uint64_t& cmdLength) {
    return makeDataFrame(data, length, (finalFrame & 0xFFU) != 0, cmdLength);
}

// Answers whether there is a buffer to build a frame in.
bool NSCommandProcessor::clearCommandFrame(std::uint64_t& cmdLength) {
    cmdLength = 0;
    if (!m_pbCmdFlames) {
        return false;
    }
    std::fill_n(m_pbCmdFlames.get(), FRAME_BUFFER_SIZE, std::uint8_t{0});
    return true;
}

// payload: the command code and its parameters.
ResultCode NSCommandProcessor::makeCommand(std::initializer_list<std::uint8_t> payload,
                                           std::uint64_t& cmdLength) {
    if (!clearCommandFrame(cmdLength)) {
        return RESULT_INIT_FAILED;
    }
    std::copy(payload.begin(), payload.end(), &m_pbCmdFlames[PAYLOAD_OFFSET]);
    m_pbCmdFlames[0] = SOH;
    closeFrame(payload.size(), ETX, cmdLength);
    return RESULT_OK;
}

// Writes what frames of both kinds share around their payload. LEN is one byte, so 256 becomes 0
// there; SUM runs over the true length.
void NSCommandProcessor::closeFrame(std::uint64_t payloadLength, std::uint8_t endByte,
                                    std::uint64_t& cmdLength) {
    m_pbCmdFlames[LEN_OFFSET] = static_cast<std::uint8_t>(payloadLength);
    m_pbCmdFlames[PAYLOAD_OFFSET + payloadLength] =
        getCheckSum(m_pbCmdFlames.get(), LEN_OFFSET, static_cast<std::int32_t>(payloadLength) + 1);
    m_pbCmdFlames[PAYLOAD_OFFSET + payloadLength + 1] = endByte;
    cmdLength = payloadLength + FRAME_OVERHEAD;
}

} // namespace flashwriter
