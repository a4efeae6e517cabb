#include "pool.h"

#include <gtest/gtest.h>

namespace
{

char *take(Pool *pool, std::size_t size)
{
    return static_cast<char *>(pool->allocate(size));
}

TEST(Pool, FillsBlocksInStepsOfEightAndAbandonsWhatIsTooSmall)
{
    Pool pool;
    const char *first = take(&pool, 0);
    for (const auto &[size, offset] : {std::pair(1U, 0), {8U, 8}, {9U, 16}, {8160U, 32}})
        EXPECT_EQ(take(&pool, size), first + offset);
    const char *second = take(&pool, 8000);
    const char *large = take(&pool, 8193);
    EXPECT_NE(large, second + 8000);
    // Nothing is left of the large block, and the rest of the one before it is lost.
    EXPECT_NE(take(&pool, 8), large + 8200);
    EXPECT_EQ(pool.bytesUsed(), 24400U);
    EXPECT_THROW(pool.allocate(static_cast<std::size_t>(-1)), std::bad_alloc);
}

TEST(Pool, ReusesTheLastReleasedBlockThatFitsAndPoisonsIt)
{
    Pool pool;
    const char *small = take(&pool, 8192);
    const char *large = take(&pool, 20000);
    const char *last = take(&pool, 10);
    pool.clear();
    EXPECT_EQ(pool.bytesUsed(), 0U);
    EXPECT_EQ(std::string({*last, large[19999]}), "\xFE\xFE");
    Pool other;
    EXPECT_EQ(take(&other, 9000), large);
    EXPECT_EQ(take(&other, 11000), large + 9000);
    // Released from the newest block to the oldest, so the oldest is the first to be found.
    EXPECT_EQ(take(&other, 100), small);
    EXPECT_EQ(take(&other, 8100), last);
}

TEST(Pool, GoesBackToAMark)
{
    Pool pool;
    const Pool::Mark empty = pool.mark();
    const char *first = take(&pool, 16);
    const Pool::Mark mark = pool.mark();
    take(&pool, 20000);
    take(&pool, 8);
    pool.release(mark);
    EXPECT_EQ(take(&pool, 8), first + 16);
    pool.release(empty);
    EXPECT_EQ(pool.bytesUsed(), 20032U);
    EXPECT_EQ(take(&pool, 8), first);
}

}  // namespace
