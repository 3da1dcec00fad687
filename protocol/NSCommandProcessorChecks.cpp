// What the codec makes of received frames. LEN is the sender's word and may be any byte, whatever
// really arrived; every index below is either fixed or reached from it.
#include "protocol/NSCommandProcessor.h"

#include <algorithm>

namespace flashwriter {
namespace {

// The furthest that LEN can lead: an end byte behind 255 bytes of payload and SUM.
static_assert(PAYLOAD_OFFSET + 0xFF + 1 < FRAME_BUFFER_SIZE);

// The SUM that the frame should carry if its LEN is true.
std::uint8_t sumByLength(const std::uint8_t* frame) {
    return NSCommandProcessor::getCheckSum(frame, LEN_OFFSET, frame[LEN_OFFSET] + 1);
}

} // namespace

std::uint8_t NSCommandProcessor::getCheckSum(const std::uint8_t* bytes, std::int32_t startIndex,
                                             std::int32_t count) {
    unsigned sum = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        sum -= bytes[startIndex + i];
    }
    return static_cast<std::uint8_t>(sum);
}

ResultCode NSCommandProcessor::checkStatus(std::uint8_t& ST1) const {
    const std::uint8_t* frame = m_pbDataFlames.get();
    if (frame == nullptr) {
        return RESULT_INIT_FAILED;
    }
    if (frame[0] != STX || frame[LEN_OFFSET] != 1 || frame[4] != ETX) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    if (sumByLength(frame) != frame[3]) {
        return RESULT_SUM_ERROR;
    }
    ST1 = frame[2];
    return RESULT_OK;
}

ResultCode NSCommandProcessor::checkDataFrame(std::uint8_t& ST1, std::uint8_t& pbSt2) const {
    const std::uint8_t* frame = m_pbDataFlames.get();
    if (frame == nullptr) {
        return RESULT_INIT_FAILED;
    }
    if (frame[0] != STX || frame[LEN_OFFSET] != 2 || frame[5] != ETX) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    if (getCheckSum(frame, LEN_OFFSET, 3) != frame[4]) {
        return RESULT_SUM_ERROR;
    }
    ST1 = frame[2];
    pbSt2 = frame[3];
    return RESULT_OK;
}

ResultCode NSCommandProcessor::CheckBaudRateStatus(std::uint8_t& ST1, std::uint8_t& pdD01,
                                                   std::uint8_t& pdD02) const {
    const std::uint8_t* frame = m_pbDataFlames.get();
    if (frame == nullptr) {
        return RESULT_INIT_FAILED;
    }
    if (sumByLength(frame) != frame[5]) {
        return RESULT_SUM_ERROR;
    }
    if (frame[0] != STX || frame[LEN_OFFSET] != 3 || frame[6] != ETX) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    ST1 = frame[2];
    pdD01 = frame[3];
    pdD02 = frame[4];
    return RESULT_OK;
}

ResultCode NSCommandProcessor::CheckSecurityGetDataFrame(std::uint8_t& bFlg, std::uint8_t& pbBot,
                                                         std::uint8_t& pbSsl, std::uint8_t& pbSsh,
                                                         std::uint8_t& pbSel,
                                                         std::uint8_t& pbSeh) const {
    const ResultCode result = checkResultFrame(8);
    if (result != RESULT_OK) {
        return result;
    }
    // The last two of the eight data bytes carry nothing that is kept.
    bFlg = m_pbDataFlames[2];
    pbBot = m_pbDataFlames[3];
    pbSsl = m_pbDataFlames[4];
    pbSsh = m_pbDataFlames[5];
    pbSel = m_pbDataFlames[6];
    pbSeh = m_pbDataFlames[7];
    return RESULT_OK;
}

ResultCode NSCommandProcessor::CheckSiliconSignatureDataFrames(std::uint8_t* devCode,
                                                               std::uint8_t* pbDev,
                                                               std::uint8_t* pbCen,
                                                               std::uint8_t* pbDen,
                                                               std::uint8_t* pbVer) const {
    const ResultCode result = checkResultFrame(22);
    if (result != RESULT_OK) {
        return result;
    }
    const std::uint8_t* frame = m_pbDataFlames.get();
    std::copy_n(&frame[2], 3, devCode);
    std::copy_n(&frame[5], 10, pbDev);
    pbDev[11] = 0; // before pbCen, which overwrites it where the two adjoin
    std::copy_n(&frame[15], 3, pbCen);
    std::copy_n(&frame[18], 3, pbDen);
    std::copy_n(&frame[21], 3, pbVer);
    return RESULT_OK;
}

ResultCode NSCommandProcessor::CheckChecksumDataFrams(std::uint8_t& bCk1,
                                                      std::uint8_t& pbCk2) const {
    const ResultCode result = checkResultFrame(2);
    if (result != RESULT_OK) {
        return result;
    }
    bCk1 = m_pbDataFlames[2];
    pbCk2 = m_pbDataFlames[3];
    return RESULT_OK;
}

ResultCode NSCommandProcessor::checkResultFrame(std::uint8_t expectedLength) const {
    const std::uint8_t* frame = m_pbDataFlames.get();
    if (frame == nullptr) {
        return RESULT_INIT_FAILED;
    }
    const std::size_t length = frame[LEN_OFFSET];
    if (frame[0] != STX || frame[length + 3] != ETX) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    if (sumByLength(frame) != frame[length + 2]) {
        return RESULT_SUM_ERROR;
    }
    if (length != expectedLength) {
        return RESULT_FRAME_FORMAT_ERROR;
    }
    return RESULT_OK;
}

} // namespace flashwriter
