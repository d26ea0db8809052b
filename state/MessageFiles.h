#pragma once
/// The files of a user's message stream in the client's DataDir: MsgConfig.ini, which keeps its state, and Message.dat,
/// the messages themselves. The user is named by the caller, by value, and is not the current one. No entry point of
/// this module reaches these functions: they are kept for the client's programs, which share the files.
///
/// Every call forms the path, holds the file's lock for its work, and keeps nothing. Statuses are 0 for success and 1
/// for failure. Sizes are bytes.

#include <windows.h>

#include <string>

namespace VelUtility
{

/// The number of the last message.
DWORD MakeUserMessageID(std::wstring strUser, DWORD dwMessageId);
/// @param pdwMessageId [out] 0 by default.
DWORD GetUserMessageID(std::wstring strUser, DWORD* pdwMessageId);

/// The stream's interval; nothing here writes it.
/// @param pdwInterval [out] 5000 by default.
DWORD GetUserMsgInterval(std::wstring strUser, DWORD* pdwInterval);

/// For how many days messages are saved.
DWORD MakeUserMessageDays(std::wstring strUser, int iDays);
/// @param piDays [out] -1 by default.
DWORD GetUserMessageDays(std::wstring strUser, int* piDays);

/// Adds bytes at the end of a user's Message.dat, with nothing between them and what is there.
/// @param pbyData dwDataLen bytes; borrowed.
/// @return 0 also when the C runtime took the bytes and could not bring them to the file at once: a line in the log
///         tells. So whoever repeats after a 1 stores no message twice.
DWORD AppendUserMessageFile(std::wstring strUser, const BYTE* pbyData, DWORD dwDataLen);

/// Tells the path of a user's Message.dat; touches no file.
/// @param pstrPath [out] undefined after a failure.
DWORD GetUserMessageFile(std::wstring strUser, std::wstring* pstrPath);

/// Deletes Message.dat, a read-only one too.
/// @return 0 also when there was none.
DWORD DelUserMessageFile(std::wstring strUser);

} // namespace VelUtility
