#include "tools/velhost/host/CanaryBuffer.h"

#include <catch2/catch_test_macros.hpp>

using VelHost::CanaryBuffer;

TEST_CASE("a buffer starts as zeros and writing all of it is no overrun", "[velhost][buffer]")
{
    for (const size_t cbSize : {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{10000}})
    {
        CanaryBuffer buffer(cbSize);
        for (size_t i = 0; i < cbSize; ++i)
        {
            REQUIRE(buffer.Data()[i] == 0);
            buffer.Data()[i] = 0xAA;
        }
        CHECK(buffer.OverrunBytes() == 0);
    }
}

TEST_CASE("the last byte that was changed behind a buffer tells the overrun", "[velhost][buffer]")
{
    CanaryBuffer buffer(100);
    buffer.Data()[100 + 40] = 1;
    CHECK(buffer.OverrunBytes() == 41);
}

TEST_CASE("a filled room knows whether anything was written", "[velhost][buffer]")
{
    CanaryBuffer buffer(16);
    buffer.FillWithCanary();
    CHECK_FALSE(buffer.WasWritten());
    buffer.Data()[15] = 0;
    CHECK(buffer.WasWritten());
}
