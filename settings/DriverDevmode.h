#pragma once
/// The driver's device-mode record. It is handed to the spooler and to applications, so its layout is fixed.

#include <windows.h>

#include <cstddef>

/// A public DEVMODE and the driver's own tail; 232 bytes.
struct stuDrvDevmode
{
    DEVMODEW stuDevmode;  ///< the public part; dmSize 220, dmDriverExtra 12
    DWORD dwTailWord0;    ///< written 0 by the advanced page, read by nobody here
    DWORD dwNoWaterPrint; ///< the no-watermark request, 1 means set; the value of DefaultNoWaterPrint as it is
    DWORD dwTailWord2;    ///< written 0 by the advanced page, read by nobody here
};

/// dmSize of the driver's records, in bytes; what DC_SIZE answers.
inline constexpr WORD kDevmodeSize = 220;
/// dmDriverExtra, in bytes; what DC_EXTRA answers.
inline constexpr WORD kDriverExtra = 12;
/// Bytes of a whole record.
inline constexpr DWORD kRecordSize = 232;
/// dmDriverVersion; what DC_VERSION answers.
inline constexpr WORD kDriverVersion = 0x500;
/// dmSpecVersion.
inline constexpr WORD kSpecVersion = 0x401;
/// Bytes that CDM_CONVERT351 reports and asks for.
inline constexpr LONG kConvert351Size = 200;

static_assert(sizeof(DEVMODEW) == kDevmodeSize, "Windows' DEVMODEW");
static_assert(sizeof(stuDrvDevmode) == kRecordSize, "the record leaves the module");
static_assert(sizeof(stuDrvDevmode) - sizeof(DEVMODEW) == kDriverExtra, "the tail");
static_assert(offsetof(stuDrvDevmode, dwTailWord0) == 220 && offsetof(stuDrvDevmode, dwNoWaterPrint) == 224 &&
                  offsetof(stuDrvDevmode, dwTailWord2) == 228,
              "the tail's places");

/// Bytes of the whole record that a DEVMODE declares: dmSize + dmDriverExtra, which as two 16-bit words can exceed
/// 65,535.
inline DWORD DeclaredSize(const DEVMODEW& stuDevmode) noexcept
{
    return static_cast<DWORD>(stuDevmode.dmSize) + stuDevmode.dmDriverExtra;
}
