#include "settings/ConvertDevmode.h"
#include "settings/DriverDevmode.h"
#include "tests/common/GuardedBuffer.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <vector>

namespace
{

/// A record that ends at a guard page, filled with one byte, with its four header words set.
class Record
{
public:
    Record(WORD wSize, WORD wExtra, BYTE byFill, WORD wSpec, WORD wVersion)
        : m_buffer(std::max<size_t>(wSize, 72) + wExtra, byFill)
    {
        Get()->dmSpecVersion = wSpec;
        Get()->dmDriverVersion = wVersion;
        Get()->dmSize = wSize;
        Get()->dmDriverExtra = wExtra;
    }
    DEVMODEW* Get() const { return m_buffer.As<DEVMODEW>(); }
    BYTE At(size_t uiByte) const { return m_buffer.Get()[uiByte]; }
    std::vector<BYTE> Bytes() const { return {m_buffer.Get(), m_buffer.Get() + m_buffer.Size()}; }
    bool Intact() const { return m_buffer.Intact(); }

private:
    GuardedBuffer m_buffer;
};

constexpr size_t kHeaderStart = 64; // dmSpecVersion
constexpr size_t kHeaderEnd = 72;   // behind dmDriverExtra

bool IsHeader(size_t uiByte)
{
    return uiByte >= kHeaderStart && uiByte < kHeaderEnd;
}

} // namespace

TEST_CASE("a null record on either side is a failure", "[settings][devmode]")
{
    const Record record(220, 12, 0x11, 0x401, 0x500);
    CHECK(ConvertDevmode(nullptr, record.Get()) == 1);
    CHECK(ConvertDevmode(record.Get(), nullptr) == 1);
    CHECK(ConvertDevmode(nullptr, nullptr) == 1);
}

TEST_CASE("a record is copied byte for byte within the sizes that both sides declare", "[settings][devmode]")
{
    for (const WORD wInSize : {72, 148, 156, 219, 220, 221, 300, 1000})
    {
        for (const WORD wOutSize : {72, 148, 219, 220, 221, 1000})
        {
            for (const WORD wInExtra : {0, 3, 12, 20, 1000})
            {
                for (const WORD wOutExtra : {0, 4, 12, 1000})
                {
                    CAPTURE(wInSize, wOutSize, wInExtra, wOutExtra);
                    const Record in(wInSize, wInExtra, 0x11, 0x320, 0x600);
                    const Record out(wOutSize, wOutExtra, 0x22, 0x401, 0x500);
                    REQUIRE(ConvertDevmode(in.Get(), out.Get()) == 0);

                    std::vector<BYTE> expected(wOutSize + wOutExtra, 0x22);
                    std::fill_n(expected.begin(), std::min(wInSize, wOutSize), BYTE{0x11});
                    std::fill_n(expected.begin() + wOutSize, std::min(wInExtra, wOutExtra), BYTE{0x11});
                    const WORD words[] = {0x401, 0x500, wOutSize, wOutExtra};
                    std::copy_n(reinterpret_cast<const BYTE*>(words), sizeof(words), expected.begin() + kHeaderStart);
                    CHECK(out.Bytes() == expected);
                    CHECK(out.Intact());
                    CHECK(in.Intact());
                }
            }
        }
    }
}

TEST_CASE("a shorter record leaves the rest of the output and its header alone", "[settings][devmode]")
{
    const Record in(148, 0, 0x11, 0x320, 0x600);
    const Record out(220, 12, 0x22, 0x401, 0x500);
    CHECK(ConvertDevmode(in.Get(), out.Get()) == 0);
    for (size_t i = 0; i < 232; ++i)
    {
        CAPTURE(i);
        if (!IsHeader(i))
        {
            CHECK(out.At(i) == (i < 148 ? 0x11 : 0x22));
        }
    }
    CHECK(out.Get()->dmSpecVersion == 0x401);
    CHECK(out.Get()->dmDriverVersion == 0x500);
    CHECK(out.Get()->dmSize == 220);
    CHECK(out.Get()->dmDriverExtra == 12);
}

TEST_CASE("a longer tail is cut and tails are matched from their own start", "[settings][devmode]")
{
    const Record in(148, 20, 0x11, 0x320, 0x600);
    BYTE* const pbyTail = reinterpret_cast<BYTE*>(in.Get()) + 148;
    for (BYTE i = 0; i < 20; ++i)
    {
        pbyTail[i] = static_cast<BYTE>(0x80 + i);
    }
    const Record out(220, 12, 0x22, 0x401, 0x500);
    CHECK(ConvertDevmode(in.Get(), out.Get()) == 0);
    for (size_t i = 0; i < 12; ++i)
    {
        CAPTURE(i);
        CHECK(out.At(220 + i) == 0x80 + i);
    }
}

TEST_CASE("sizes that leave nothing to copy are a failure", "[settings][devmode]")
{
    const Record in(0, 0, 0x11, 0x320, 0x600);
    const Record out(220, 12, 0x22, 0x401, 0x500);
    const std::vector<BYTE> before = out.Bytes();
    CHECK(ConvertDevmode(in.Get(), out.Get()) == 1);
    CHECK(out.Bytes() == before);
}

TEST_CASE("a tail alone is something to copy", "[settings][devmode]")
{
    GuardedBuffer in(72, 0x11);
    in.As<DEVMODEW>()->dmSize = 0;
    in.As<DEVMODEW>()->dmDriverExtra = 4;
    const Record out(220, 12, 0x22, 0x401, 0x500);
    CHECK(ConvertDevmode(in.As<DEVMODEW>(), out.Get()) == 0);
    CHECK(out.At(0) == 0x22);
    CHECK(out.At(220) == 0x11);
    CHECK(out.At(223) == 0x11);
    CHECK(out.At(224) == 0x22);
}

TEST_CASE("a record converted onto itself stays as it is", "[settings][devmode]")
{
    const Record record(220, 12, 0x33, 0x401, 0x500);
    const std::vector<BYTE> before = record.Bytes();
    CHECK(ConvertDevmode(record.Get(), record.Get()) == 0);
    CHECK(record.Bytes() == before);
}

TEST_CASE("no field is validated and no bit of dmFields is honoured", "[settings][devmode]")
{
    const Record in(220, 12, 0xFF, 0x401, 0x500);
    in.Get()->dmFields = 0;
    in.Get()->dmPaperSize = -32768;
    const Record out(220, 12, 0x00, 0x401, 0x500);
    CHECK(ConvertDevmode(in.Get(), out.Get()) == 0);
    CHECK(out.Get()->dmFields == 0);
    CHECK(out.Get()->dmPaperSize == -32768);
    CHECK(out.Get()->dmOrientation == -1);
}

TEST_CASE("the record's fields lie where readers outside expect them", "[settings][devmode]")
{
    stuDrvDevmode record = {};
    record.dwNoWaterPrint = 0x04030201;
    const BYTE* const pby = reinterpret_cast<const BYTE*>(&record);
    CHECK(pby[224] == 1);
    CHECK(pby[227] == 4);
    CHECK(sizeof(record) == 232);
}
