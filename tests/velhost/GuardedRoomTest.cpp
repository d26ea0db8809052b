#include "tools/velhost/GuardedRoom.h"

#include <catch2/catch_test_macros.hpp>

using VelHost::GuardedRoom;

TEST_CASE("a room starts as zeros and writing all of it is no overrun", "[velhost][room]")
{
    for (const size_t cbRoom : {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{10000}})
    {
        GuardedRoom room(cbRoom);
        for (size_t i = 0; i < cbRoom; ++i)
        {
            REQUIRE(room.Data()[i] == 0);
            room.Data()[i] = 0xAA;
        }
        CHECK(room.OverrunBytes() == 0);
    }
}

TEST_CASE("the last byte that was changed behind a room tells the overrun", "[velhost][room]")
{
    GuardedRoom room(100);
    room.Data()[100 + 40] = 1;
    CHECK(room.OverrunBytes() == 41);
}

TEST_CASE("a filled room knows whether anything was written", "[velhost][room]")
{
    GuardedRoom room(16);
    room.FillWithCanary();
    CHECK_FALSE(room.WasWritten());
    room.Data()[15] = 0;
    CHECK(room.WasWritten());
}
