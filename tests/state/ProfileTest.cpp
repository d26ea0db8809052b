#include "state/Profile.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <vector>

using namespace VelUtility;

namespace
{

struct ProfileFixture
{
    std::wstring File() const { return folder.File(L"p.ini"); }
    std::string Bytes() const { return ReadFileBytes(File()); }

    TempFolder folder;
};

/// A file that can't be written: its folder is missing.
struct UnwritableFixture
{
    UnwritableFixture() : strFile(folder.File(L"missing\\p.ini")) {}
    TempFolder folder;
    std::wstring strFile;
};

} // namespace

TEST_CASE_METHOD(ProfileFixture, "an unsigned number is written without a sign", "[state][profile]")
{
    CHECK(WritePrivateProfileUINT(L"S", L"K", 4294967295u, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nK=4294967295\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "a signed number of -1 is written as -1", "[state][profile]")
{
    CHECK(WritePrivateProfileINT(L"S", L"K", -1, File().c_str()) != 0);
    CHECK(WritePrivateProfileINT(L"S", L"L", -2147483647 - 1, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nK=-1\r\nL=-2147483648\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "a flag of 2 is written as 1 and a flag of 0 as 0", "[state][profile]")
{
    CHECK(WritePrivateProfileBOOL(L"S", L"K", 2, File().c_str()) != 0);
    CHECK(WritePrivateProfileBOOL(L"S", L"L", 0, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nK=1\r\nL=0\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "an array of count zero writes nothing and returns 1, also when null",
                 "[state][profile]")
{
    const WORD words[1] = {7};
    const DWORD dwords[1] = {7};
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", words, 0, File().c_str()) == 1);
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", dwords, 0, File().c_str()) == 1);
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", static_cast<const WORD*>(nullptr), 0, File().c_str()) == 1);
    CHECK(WritePrivateProfileStringWArray(L"S", L"K", static_cast<const WideName*>(nullptr), 0, File().c_str()) == 1);
    CHECK(WritePrivateProfileStringWArray(L"S", L"K", static_cast<const NarrowName*>(nullptr), 0, File().c_str()) == 1);
    CHECK(WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", nullptr, 0, File().c_str()) == 1);
    CHECK(WritePrivateProfilePointArray(L"S", L"X", L"Y", nullptr, 0, File().c_str()) == 1);
    CHECK_FALSE(PathExists(File()));
}

TEST_CASE_METHOD(ProfileFixture, "a null array of numbers or pairs is a success that writes nothing",
                 "[state][profile]")
{
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", static_cast<const WORD*>(nullptr), 3, File().c_str()) == 1);
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", static_cast<const DWORD*>(nullptr), 3, File().c_str()) == 1);
    CHECK(WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", nullptr, 3, File().c_str()) == 1);
    CHECK(WritePrivateProfilePointArray(L"S", L"X", L"Y", nullptr, 3, File().c_str()) == 1);
    CHECK_FALSE(PathExists(File()));
}

TEST_CASE_METHOD(ProfileFixture, "a 16-bit element of 65535 is never negative", "[state][profile]")
{
    const WORD words[] = {65535, 0, 9};
    CHECK(WritePrivateProfileUINTArray(L"S", L"Bins", words, 3, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nBins0=65535\r\nBins1=0\r\nBins2=9\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "32-bit elements are written whole", "[state][profile]")
{
    const DWORD dwords[] = {65536, 4294967295u};
    CHECK(WritePrivateProfileUINTArray(L"S", L"MediaTypes", dwords, 2, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nMediaTypes0=65536\r\nMediaTypes1=4294967295\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "a negative number of a pair is written without a sign", "[state][profile]")
{
    const Resolution resolutions[] = {{600, -1}};
    CHECK(WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", resolutions, 1, File().c_str()) != 0);
    const POINT points[] = {{-2, 2970}, {1, 2}};
    CHECK(WritePrivateProfilePointArray(L"T", L"X", L"Y", points, 2, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nX0=600\r\nY0=4294967295\r\n[T]\r\nX0=4294967294\r\nY0=2970\r\nX1=1\r\nY1=2\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "names of both widths are written one to a key", "[state][profile]")
{
    const NarrowName bins[] = {L"Tray 1", L""};
    const WideName papers[] = {L"A4", L"Letter"};
    CHECK(WritePrivateProfileStringWArray(L"S", L"BinNames", bins, 2, File().c_str()) != 0);
    CHECK(WritePrivateProfileStringWArray(L"S", L"PaperNames", papers, 2, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nBinNames0=Tray 1\r\nBinNames1=\r\nPaperNames0=A4\r\nPaperNames1=Letter\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "a name of 24 characters without a terminator runs on into the next one",
                 "[state][profile]")
{
    NarrowName names[2] = {};
    wmemcpy(names[0], L"ABCDEFGHIJKLMNOPQRSTUVWX", 24);
    wcscpy(names[1], L"yz");
    CHECK(WritePrivateProfileStringWArray(L"S", L"N", names, 2, File().c_str()) != 0);
    CHECK(Bytes() == "[S]\r\nN0=ABCDEFGHIJKLMNOPQRSTUVWXyz\r\nN1=yz\r\n");
}

TEST_CASE_METHOD(ProfileFixture, "other sections and keys stay when a key is replaced", "[state][profile]")
{
    WriteFileBytes(File(), "[A]\r\nK=1\r\n[S]\r\nK=1\r\nL=2\r\n");
    CHECK(WritePrivateProfileUINT(L"S", L"K", 9, File().c_str()) != 0);
    CHECK(Bytes() == "[A]\r\nK=1\r\n[S]\r\nK=9\r\nL=2\r\n");
}

TEST_CASE_METHOD(UnwritableFixture, "every writer returns zero when the file can't be written", "[state][profile]")
{
    const wchar_t* const pszFile = strFile.c_str();
    const WORD words[] = {1};
    const DWORD dwords[] = {1};
    const NarrowName bins[] = {L"b"};
    const WideName papers[] = {L"p"};
    const Resolution resolutions[] = {{1, 2}};
    const POINT points[] = {{1, 2}};
    CHECK(WritePrivateProfileUINT(L"S", L"K", 1, pszFile) == 0);
    CHECK(WritePrivateProfileINT(L"S", L"K", 1, pszFile) == 0);
    CHECK(WritePrivateProfileBOOL(L"S", L"K", 1, pszFile) == 0);
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", words, 1, pszFile) == 0);
    CHECK(WritePrivateProfileUINTArray(L"S", L"K", dwords, 1, pszFile) == 0);
    CHECK(WritePrivateProfileStringWArray(L"S", L"K", bins, 1, pszFile) == 0);
    CHECK(WritePrivateProfileStringWArray(L"S", L"K", papers, 1, pszFile) == 0);
    CHECK(WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", resolutions, 1, pszFile) == 0);
    CHECK(WritePrivateProfilePointArray(L"S", L"X", L"Y", points, 1, pszFile) == 0);
}
