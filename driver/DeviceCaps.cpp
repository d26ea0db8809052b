#include "driver/DeviceCaps.h"

#include "diag/LogSite.h"
#include "settings/DriverDevmode.h"
#include "state/CapabilitySnapshot.h"

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// A capability that is a constant of this driver.
struct ConstantRow
{
    WORD iDevCap;
    DWORD dwAnswer;
};
constexpr ConstantRow kConstants[] = {
    {DC_SIZE, kDevmodeSize},      {DC_EXTRA, kDriverExtra}, {DC_VERSION, kDriverVersion}, {DC_DRIVER, 1}, {DC_NUP, 1},
    {DC_TRUETYPE, DCTT_DOWNLOAD},
};

/// Required: 0 is never an answer; a printer that can't do a thing and an empty list both look like a failure.
/// Applications that test for the failure alone so need no second test.
DWORD NeverZero(DWORD dwAnswer)
{
    return dwAnswer != 0 ? dwAnswer : VelUtility::kNoAnswer;
}

/// The answer as it stands, 0 included.
DWORD FindAnswer(WORD iDevCap, PVOID pvOutput)
{
    for (const ConstantRow& row : kConstants)
    {
        if (row.iDevCap == iDevCap)
        {
            return row.dwAnswer;
        }
    }
    // What is neither a constant nor in the snapshot is refused without a look at the file.
    return VelUtility::FindCapRow(iDevCap) != nullptr ? VelUtility::GetComputerCaps(iDevCap, pvOutput)
                                                      : VelUtility::kNoAnswer;
}

DWORD FindNames(WORD DeviceCap, PVOID pvOutput, DWORD cchBuf)
{
    if (cchBuf < VelUtility::kWideNameUnits || pvOutput == nullptr)
    {
        LOG_WARNING("cchBuf = %u", static_cast<unsigned>(cchBuf));
        LOG_WARNING("pvOutput = 0x%08X", LowBits(pvOutput));
        return VelUtility::kNoAnswer;
    }
    LOG_DEBUG("DeviceCap = %d", DeviceCap);
    if (DeviceCap != DC_PAPERNAMES && DeviceCap != DC_MEDIAREADY)
    {
        return VelUtility::kNoAnswer;
    }
    const DWORD dwCount = VelUtility::GetComputerCaps(DeviceCap, nullptr);
    // Required: the size is compared in bytes although cchBuf counts characters, so callers must offer twice the
    // buffer. The first product is cut to 32 bits; a failed count gives a size that no cchBuf reaches.
    const DWORD dwUnits = dwCount * static_cast<DWORD>(VelUtility::kWideNameUnits);
    if (cchBuf < static_cast<unsigned __int64>(dwUnits) * sizeof(wchar_t))
    {
        return VelUtility::kNoAnswer;
    }
    return VelUtility::GetComputerCaps(DeviceCap, pvOutput);
}

} // namespace

// No trace scopes here: the lines belong to the entry points.

DWORD AnswerCapability(WORD iDevCap, PVOID pvOutput)
{
    return NeverZero(FindAnswer(iDevCap, pvOutput));
}

DWORD AnswerNames(WORD DeviceCap, PVOID pvOutput, DWORD cchBuf)
{
    return NeverZero(FindNames(DeviceCap, pvOutput, cchBuf));
}
