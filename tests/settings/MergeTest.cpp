#include "settings/DefaultRecord.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <vector>

namespace
{

/// A record in a buffer that ends at a guard page: its declared public bytes, but at least the header.
struct Record : GuardedBuffer
{
    Record(WORD wSize, WORD wExtra, WORD wSpec, WORD wVersion, BYTE byFill)
        : GuardedBuffer(std::max<size_t>(wSize, 72), byFill)
    {
        Dm()->dmSpecVersion = wSpec;
        Dm()->dmDriverVersion = wVersion;
        Dm()->dmSize = wSize;
        Dm()->dmDriverExtra = wExtra;
    }
    DEVMODEW* Dm() const { return As<DEVMODEW>(); }
};

/// The default, which is handed over by value.
DEVMODEW Default(WORD wSize, WORD wExtra)
{
    DEVMODEW stuDefault;
    memset(&stuDefault, 0x33, sizeof(stuDefault));
    stuDefault.dmSpecVersion = 0xD001;
    stuDefault.dmDriverVersion = 0xD002;
    stuDefault.dmSize = wSize;
    stuDefault.dmDriverExtra = wExtra;
    return stuDefault;
}

constexpr WORD kInSpec = 0xA001;
constexpr WORD kInVersion = 0xA002;
constexpr WORD kOutSpec = 0xB001;
constexpr WORD kOutVersion = 0xB002;

} // namespace

TEST_CASE("a null output of the merge gives 0", "[settings][merge]")
{
    const Record in(220, 12, kInSpec, kInVersion, 0x11);
    CHECK(SubConvertDevmodeOut(Default(220, 12), in.Dm(), nullptr) == 0);
    CHECK(SubConvertDevmodeOut(Default(220, 12), nullptr, nullptr) == 0);
}

TEST_CASE("a null input copies as many bytes of the default as it declares", "[settings][merge]")
{
    for (const WORD wSize : {0, 68, 148, 219, 220})
    {
        CAPTURE(wSize);
        const DEVMODEW stuDefault = Default(wSize, 12);
        const GuardedBuffer out(220, 0x22);
        CHECK(SubConvertDevmodeOut(stuDefault, nullptr, out.As<DEVMODEW>()) == 1);
        std::vector<BYTE> expected(220, 0x22);
        std::copy_n(reinterpret_cast<const BYTE*>(&stuDefault), wSize, expected.begin());
        CHECK(std::equal(expected.begin(), expected.end(), out.Get()));
        CHECK(out.Intact());
    }
}

TEST_CASE("a null input with a default that declares more than it has copies what it has", "[settings][merge]")
{
    const DEVMODEW stuDefault = Default(1000, 12);
    const GuardedBuffer out(220, 0x22);
    CHECK(SubConvertDevmodeOut(stuDefault, nullptr, out.As<DEVMODEW>()) == 1);
    CHECK(memcmp(out.Get(), &stuDefault, 220) == 0);
}

TEST_CASE("every output word of the merge follows from the two sides' sizes", "[settings][merge]")
{
    constexpr WORD kSizes[] = {0, 68, 148, 219, 220, 221, 300, 1000};
    constexpr WORD kExtras[] = {0, 3, 4, 11, 12, 13, 1000};
    constexpr WORD kOutSize = 220;
    constexpr WORD kOutExtra = 12;
    for (const WORD wIn : kSizes)
    {
        for (const WORD wDef : kSizes)
        {
            for (const WORD wInExtra : kExtras)
            {
                for (const WORD wDefExtra : kExtras)
                {
                    CAPTURE(wIn, wDef, wInExtra, wDefExtra);
                    const Record in(wIn, wInExtra, kInSpec, kInVersion, 0x11);
                    // Room for what is copied, and for the output's own 220 bytes.
                    const size_t cbCopied = std::min(wIn, wDef);
                    const GuardedBuffer out(std::max<size_t>(cbCopied, kOutSize), 0x22);
                    DEVMODEW* const pOut = out.As<DEVMODEW>();
                    pOut->dmSpecVersion = kOutSpec;
                    pOut->dmDriverVersion = kOutVersion;
                    pOut->dmSize = kOutSize;
                    pOut->dmDriverExtra = kOutExtra;
                    REQUIRE(SubConvertDevmodeOut(Default(wDef, wDefExtra), in.Dm(), pOut) == 1);

                    // The four words lie at 64, 66, 68 and 70; each is the input's where the copy reached it.
                    const WORD wHeldSize = cbCopied >= 70 ? wIn : kOutSize;
                    const WORD wHeldExtra = cbCopied >= 72 ? wInExtra : kOutExtra;
                    const bool bSizeOfInput = wIn <= wDef;
                    const bool bExtraOfInput = wInExtra < wDefExtra;
                    CHECK(pOut->dmSpecVersion == (bSizeOfInput ? kInSpec : 0xD001));
                    CHECK(pOut->dmSize == std::min<WORD>(wHeldSize, bSizeOfInput ? wIn : wDef));
                    CHECK(pOut->dmDriverVersion == (bExtraOfInput ? kInVersion : 0xD002));
                    CHECK(pOut->dmDriverExtra == std::min<WORD>(wHeldExtra, bExtraOfInput ? wInExtra : wDefExtra));
                    bool bBytes = true;
                    for (size_t i = 0; i < out.Size(); ++i)
                    {
                        const bool bHeader = i >= 64 && i < 72;
                        bBytes = bBytes && (bHeader || out.Get()[i] == (i < cbCopied ? 0x11 : 0x22));
                    }
                    CHECK(bBytes);
                    CHECK(out.Intact());
                }
            }
        }
    }
}

TEST_CASE("with equal sizes the input's spec stands, with equal extras the default's version", "[settings][merge]")
{
    const Record in(220, 12, kInSpec, kInVersion, 0x11);
    const Record out(220, 12, kOutSpec, kOutVersion, 0x22);
    CHECK(SubConvertDevmodeOut(Default(220, 12), in.Dm(), out.Dm()) == 1);
    CHECK(out.Dm()->dmSpecVersion == kInSpec);
    CHECK(out.Dm()->dmDriverVersion == 0xD002);
    CHECK(out.Dm()->dmSize == 220);
    CHECK(out.Dm()->dmDriverExtra == 12);
}

TEST_CASE("an input of 300 bytes gives 220 of them and the default's spec", "[settings][merge]")
{
    const Record in(300, 12, kInSpec, kInVersion, 0x11);
    const Record out(220, 12, kOutSpec, kOutVersion, 0x22);
    CHECK(SubConvertDevmodeOut(Default(220, 12), in.Dm(), out.Dm()) == 1);
    CHECK(out.Dm()->dmSize == 220);
    CHECK(out.Dm()->dmSpecVersion == 0xD001);
    CHECK(out.Get()[219] == 0x11);
}

TEST_CASE("an input without extra bytes gives an output without them", "[settings][merge]")
{
    const Record in(220, 0, kInSpec, kInVersion, 0x11);
    const Record out(220, 12, kOutSpec, kOutVersion, 0x22);
    CHECK(SubConvertDevmodeOut(Default(220, 12), in.Dm(), out.Dm()) == 1);
    CHECK(out.Dm()->dmDriverExtra == 0);
    CHECK(out.Dm()->dmDriverVersion == kInVersion);
}

TEST_CASE("nothing of a private tail is copied by the merge", "[settings][merge]")
{
    stuDrvDevmode in;
    memset(&in, 0x11, sizeof(in));
    in.stuDevmode.dmSize = 220;
    in.stuDevmode.dmDriverExtra = 12;
    stuDrvDevmode out;
    memset(&out, 0x22, sizeof(out));
    out.stuDevmode.dmSize = 220;
    out.stuDevmode.dmDriverExtra = 12;
    CHECK(SubConvertDevmodeOut(Default(220, 12), &in.stuDevmode, &out.stuDevmode) == 1);
    CHECK(out.dwTailWord0 == 0x22222222);
    CHECK(out.dwNoWaterPrint == 0x22222222);
    CHECK(out.dwTailWord2 == 0x22222222);
}

TEST_CASE("a merge tells what it does, inside a scope of its own", "[settings][merge][log]")
{
    using Lines = std::vector<std::string>;
    const Record in(220, 12, kInSpec, kInVersion, 0x11);
    const Record out(220, 12, kOutSpec, kOutVersion, 0x22);
    const auto own = [](const DEVMODEW* pIn, DEVMODEW* pOut) {
        const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
        SubConvertDevmodeOut(Default(220, 12), pIn, pOut);
        return OwnLines(logging, "SubConvertDevmodeOut");
    };
    const auto expected = [](const char* pszLine) {
        return Lines{"VelUI_dll__SubConvertDevmodeOut :START......", pszLine,
                     "VelUI_dll__SubConvertDevmodeOut :End  ......"};
    };
    CHECK(own(in.Dm(), nullptr) == expected("ERROR - SubVelUi(#) : NULL == pstuDevOut"));
    CHECK(own(nullptr, out.Dm()) ==
          expected("INFO - SubConvertDevmodeOut - Input DEVMODE is null, copy default devmode "
                   "to output buffer."));
    CHECK(own(in.Dm(), out.Dm()) == expected("INFO - SubConvertDevmodeOut - Merge DEVMODE"));
}
