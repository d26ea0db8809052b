#pragma once
/// Answers to capability queries: constants of this driver, and the snapshot in Config.ini. Neither the printer nor the
/// settings are looked at.

#include <windows.h>

/// Answers one capability.
/// @param pvOutput [out] null, or a buffer for the whole list (see VelUtility::GetComputerCaps).
/// @return the answer; 0xFFFFFFFF for a refused code, anything missing, and an answer of 0.
DWORD AnswerCapability(WORD iDevCap, PVOID pvOutput);

/// Gives the spooler the names of papers (DC_PAPERNAMES) or loaded media (DC_MEDIAREADY).
/// @param pvOutput [out] buffer of cchBuf wide characters; null is refused.
/// @param cchBuf   wide characters at pvOutput; twice as many are asked for as the names need.
/// @return the number of names; 0xFFFFFFFF for anything else.
DWORD AnswerNames(WORD DeviceCap, PVOID pvOutput, DWORD cchBuf);
