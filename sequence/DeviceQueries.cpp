#include "sequence/DeviceQueries.h"

namespace flashwriter {

namespace {

constexpr std::uint64_t SILICON_SIGNATURE_FRAME_SIZE = 26;
constexpr std::uint64_t SECURITY_GET_FRAME_SIZE = 12;

} // namespace

ResultCode DeviceQueries::comSiliconSignatureProc() {
    NSCommandProcessor& cmd = m_link.cmd();
    m_link.initCommandInfo(COM_SILICON_SIGNATURE);
    ResultCode result = m_link.exchange(
        [&](std::uint64_t& length) { return cmd.MakeSiliconSignatureCommand(length); },
        m_link.waitingTime().GetSiliconSignatureTcs11(), &NSCommandProcessor::CheckResetStatus);
    if (result == RESULT_OK) {
        result = m_link.awaitFrame(SILICON_SIGNATURE_FRAME_SIZE,
                                   m_link.waitingTime().GetSiliconSignatureTsd11());
    }
    if (result != RESULT_OK) {
        return result;
    }
    _SILICONSIGNATURE& signature = m_link.contextInfo().SiliconSignature;
    // The name is reached through the whole record: decoding writes one byte past its end.
    auto* const record = reinterpret_cast<std::uint8_t*>(&signature);
    return cmd.CheckSiliconSignatureDataFrames(
        signature.DevCode, record + offsetof(_SILICONSIGNATURE, DevName), signature.CodeEndAddress,
        signature.DataEndAddress, signature.FVer);
}

ResultCode DeviceQueries::comSecrityGetProc() {
    NSCommandProcessor& cmd = m_link.cmd();
    m_link.initCommandInfo(COM_SECURITY_GET);
    ResultCode result = m_link.exchange(
        [&](std::uint64_t& length) { return cmd.MakeSecurityGetCommand(length); },
        m_link.waitingTime().GetSecurityGetTcs8(), &NSCommandProcessor::CheckSecurityGetCommand);
    if (result == RESULT_OK) {
        result =
            m_link.awaitFrame(SECURITY_GET_FRAME_SIZE, m_link.waitingTime().GetSecurityGetTsd8());
    }
    if (result != RESULT_OK) {
        return result;
    }
    _SECURITYGETINFO& info = m_link.contextInfo().SecurityGetInfo;
    return cmd.CheckSecurityGetDataFrame(info.Flg, info.Bot, info.Ssl, info.Ssh, info.Sel,
                                         info.Seh);
}

std::uint64_t DeviceQueries::makeAddress(std::uint8_t first, std::uint8_t mid, std::uint8_t low) {
    return std::uint64_t{first} | std::uint64_t{mid} << 8 | std::uint64_t{low} << 16;
}

ResultCode DeviceQueries::splitAddress(std::uint64_t address, std::uint8_t& high, std::uint8_t& mid,
                                       std::uint8_t& low) {
    high = static_cast<std::uint8_t>(address >> 16);
    mid = static_cast<std::uint8_t>(address >> 8);
    low = static_cast<std::uint8_t>(address);
    return RESULT_OK;
}

float DeviceQueries::makeFirmWareVersion(std::uint8_t major, std::uint8_t minor,
                                         std::uint8_t build) {
    return static_cast<float>(major * 100 + minor * 10 + build) / 100.0F;
}

} // namespace flashwriter
