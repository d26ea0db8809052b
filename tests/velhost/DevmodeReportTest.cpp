#include "settings/DriverDevmode.h"
#include "tools/velhost/report/DevmodeReport.h"

#include <catch2/catch_test_macros.hpp>

#include <cwchar>

using namespace VelHost;

namespace
{

stuDrvDevmode SampleRecord()
{
    stuDrvDevmode stuRecord = {};
    stuRecord.stuDevmode.dmSpecVersion = kSpecVersion;
    stuRecord.stuDevmode.dmDriverVersion = kDriverVersion;
    stuRecord.stuDevmode.dmSize = kDevmodeSize;
    stuRecord.stuDevmode.dmDriverExtra = kDriverExtra;
    stuRecord.stuDevmode.dmFields = DM_ORIENTATION | DM_COPIES | 0x8;
    stuRecord.stuDevmode.dmCopies = -3;
    std::wcscpy(stuRecord.stuDevmode.dmFormName, L"大16开");
    stuRecord.dwNoWaterPrint = 1;
    return stuRecord;
}

Json Read(const stuDrvDevmode& stuRecord, size_t cbRecord = sizeof(stuDrvDevmode))
{
    return DevmodeToJson(ReadDevmode(reinterpret_cast<const BYTE*>(&stuRecord), cbRecord));
}

} // namespace

TEST_CASE("a whole record is read with its header, fields and tail", "[velhost][devmode]")
{
    const Json value = Read(SampleRecord());
    CHECK(value["dmSpecVersion"] == 0x401);
    CHECK(value["dmDriverVersion"] == 0x500);
    CHECK(value["dmSize"] == 220);
    CHECK(value["dmDriverExtra"] == 12);
    CHECK(value["dmCopies"] == -3);
    CHECK(value["dmFormName"] == "大16开");
    CHECK(value["dmFieldsNames"] == Json({"DM_ORIENTATION", "DM_PAPERWIDTH", "DM_COPIES"}));
    CHECK(value["tailWords"] == Json({0, 1, 0}));
}

TEST_CASE("bits of dmFields that have no name are shown as a number", "[velhost][devmode]")
{
    stuDrvDevmode stuRecord = SampleRecord();
    stuRecord.stuDevmode.dmFields = DM_SCALE | 0x80;
    CHECK(Read(stuRecord)["dmFieldsNames"] == Json({"DM_SCALE", "0x00000080"}));
}

TEST_CASE("fields behind the declared size are left out, but for the header", "[velhost][devmode]")
{
    stuDrvDevmode stuRecord = SampleRecord();
    stuRecord.stuDevmode.dmSize = 80;
    stuRecord.stuDevmode.dmDriverExtra = 0;
    const Json value = Read(stuRecord);
    CHECK(value.contains("dmPaperSize"));
    CHECK_FALSE(value.contains("dmPaperLength"));
    CHECK(value["tailWords"].empty());
    stuRecord.stuDevmode.dmSize = 4;
    CHECK(Read(stuRecord).contains("dmDriverExtra"));
    CHECK_FALSE(Read(stuRecord).contains("dmFields"));
}

TEST_CASE("a tail is read only as far as there are bytes", "[velhost][devmode]")
{
    stuDrvDevmode stuRecord = SampleRecord();
    stuRecord.stuDevmode.dmDriverExtra = 60000;
    CHECK(Read(stuRecord)["tailWords"].size() == 3);
    CHECK(Read(stuRecord, 227)["tailWords"].size() == 1);
}
