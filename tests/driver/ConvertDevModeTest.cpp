#include "settings/DriverDevmode.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/PrivateRegistry.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>

namespace
{

struct ConvertFixture
{
    ConvertFixture() { REQUIRE(module.ConvertDevMode != nullptr); }
    BOOL Convert(DEVMODEW* pdmIn, DEVMODEW* pdmOut, DWORD fMode)
    {
        wchar_t szPrinter[] = L"VelPrinter";
        SetLastError(7777);
        const BOOL bReturn = module.ConvertDevMode(szPrinter, pdmIn, pdmOut, size.As<LONG>(), fMode);
        dwLastError = GetLastError();
        return bReturn;
    }
    LONG& Size() { return *size.As<LONG>(); }

    PrivateRegistry registry;
    BuiltModule module;
    GuardedBuffer size{sizeof(LONG)};
    DWORD dwLastError = 0;
};

/// A record filled with one byte, that ends at a guard page.
struct Record : GuardedBuffer
{
    Record(WORD wSize, WORD wExtra, BYTE byFill) : GuardedBuffer(size_t{wSize} + wExtra, byFill)
    {
        Dm()->dmSpecVersion = static_cast<WORD>(0x100 + byFill);
        Dm()->dmDriverVersion = static_cast<WORD>(0x200 + byFill);
        Dm()->dmSize = wSize;
        Dm()->dmDriverExtra = wExtra;
    }
    DEVMODEW* Dm() const { return As<DEVMODEW>(); }
    bool All(size_t uiFrom, size_t uiTo, BYTE by) const
    {
        return std::all_of(Get() + uiFrom, Get() + uiTo, [by](BYTE b) { return b == by; });
    }
};

constexpr DWORD kUnset = 7777; // the last error before the call

} // namespace

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT with a null input gives 87", "[driver][convert]")
{
    const Record out(220, 12, 0x22);
    Size() = 232;
    CHECK(Convert(nullptr, out.Dm(), CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    CHECK(Size() == 232);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT with a null output gives 87", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    Size() = 232;
    CHECK(Convert(in.Dm(), nullptr, CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    CHECK(Size() == 232);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT into a buffer of 231 gives 87 and does not tell the size",
                 "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 231;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    CHECK(Size() == 231);
    CHECK(out.All(72, 232, 0x22));
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT compares the size as a signed value", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = -1;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    CHECK(Size() == -1);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT of a shorter record keeps the rest of the output", "[driver][convert]")
{
    const Record in(148, 0, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 500;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 1);
    CHECK(dwLastError == kUnset);
    CHECK(Size() == 232);
    CHECK(out.All(0, 64, 0x11));
    CHECK(out.Dm()->dmSpecVersion == 0x122);
    CHECK(out.Dm()->dmDriverVersion == 0x222);
    CHECK(out.Dm()->dmSize == 220);
    CHECK(out.Dm()->dmDriverExtra == 12);
    CHECK(out.All(72, 148, 0x11));
    CHECK(out.All(148, 232, 0x22));
    CHECK(out.Intact());
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT copies 12 bytes of a tail of 20", "[driver][convert]")
{
    const Record in(220, 20, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 232;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 1);
    CHECK(out.All(220, 232, 0x11));
    CHECK(Size() == 232);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT adds the two declared sizes as 32-bit numbers", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 65500, 0x22); // 65,720 in all: more than 16 bits
    Size() = 232;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    Size() = 65720;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT) == 1);
    CHECK(Size() == 65720);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT of records without a byte in common gives 87", "[driver][convert]")
{
    GuardedBuffer in(72, 0x11);
    in.As<DEVMODEW>()->dmSize = 0;
    in.As<DEVMODEW>()->dmDriverExtra = 0;
    const Record out(220, 12, 0x22);
    Size() = 232;
    CHECK(Convert(in.As<DEVMODEW>(), out.Dm(), CDM_CONVERT) == 0);
    CHECK(dwLastError == 87);
    CHECK(Size() == 232);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT351 into a room of 199 gives 122 and tells 200", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 199;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT351) == 0);
    CHECK(dwLastError == 122);
    CHECK(Size() == 200);
    CHECK(out.All(72, 232, 0x22));
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT351 with a null output gives 122 and tells 200", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    Size() = 1000;
    CHECK(Convert(in.Dm(), nullptr, CDM_CONVERT351) == 0);
    CHECK(dwLastError == 122);
    CHECK(Size() == 200);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT351 with a negative room gives 122", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = -1;
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT351) == 0);
    CHECK(dwLastError == 122);
    CHECK(Size() == 200);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT351 copies by the sizes in the output's header and reports 200",
                 "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 200; // fewer bytes than the header declares
    CHECK(Convert(in.Dm(), out.Dm(), CDM_CONVERT351) == 1);
    CHECK(dwLastError == kUnset);
    CHECK(Size() == 200);
    CHECK(out.All(72, 232, 0x11));
    CHECK(out.Dm()->dmSize == 220);
}

TEST_CASE_METHOD(ConvertFixture, "CDM_CONVERT351 with a null input fails without a last error", "[driver][convert]")
{
    const Record out(220, 12, 0x22);
    Size() = 232;
    CHECK(Convert(nullptr, out.Dm(), CDM_CONVERT351) == 0);
    CHECK(dwLastError == kUnset);
    CHECK(Size() == 232);
}

// Run by the next case in processes of their own.
TEST_CASE_METHOD(ConvertFixture, "child: CDM_CONVERT without a size", "[.child]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    const decltype(&DrvConvertDevMode) pfnBare = module.ConvertDevMode;
    pfnBare(nullptr, in.Dm(), out.Dm(), nullptr, CDM_CONVERT);
}
TEST_CASE_METHOD(ConvertFixture, "child: CDM_CONVERT351 without a size", "[.child]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    const decltype(&DrvConvertDevMode) pfnBare = module.ConvertDevMode;
    pfnBare(nullptr, in.Dm(), out.Dm(), nullptr, CDM_CONVERT351);
}

TEST_CASE("a null size is tested for in the default mode alone: the two others fault", "[driver][convert]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: CDM_CONVERT without a size")));
    CHECK(IsFault(ExitCodeOfCase(L"child: CDM_CONVERT351 without a size")));
}

TEST_CASE_METHOD(ConvertFixture, "a mode that is none of the known ones gives 13", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    for (const DWORD fMode : {0ul, 3ul, 5ul, 6ul, 7ul, 8ul, 9ul, 0x80000001ul, 0xFFFFFFFFul})
    {
        CAPTURE(fMode);
        Size() = 232;
        CHECK(Convert(in.Dm(), out.Dm(), fMode) == 0);
        CHECK(dwLastError == 13);
        CHECK(Size() == 232);
        CHECK(out.All(72, 232, 0x22));
    }
}

TEST_CASE_METHOD(ConvertFixture, "the printer's name is not used", "[driver][convert]")
{
    const Record in(220, 12, 0x11);
    const Record out(220, 12, 0x22);
    Size() = 232;
    CHECK(module.ConvertDevMode(nullptr, in.Dm(), out.Dm(), &Size(), CDM_CONVERT) == 1);
}
