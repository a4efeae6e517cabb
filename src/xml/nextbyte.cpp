#include "nextbyte.h"

#include <algorithm>
#include <cstring>

void NextByte::find(const char *from)
{
    assert(next <= from && from <= end);
    constexpr std::ptrdiff_t step = 1 << 15;
    searched = from + std::min(step, end - from);
    const void *found = std::memchr(from, byte, static_cast<std::size_t>(searched - from));
    next = found ? static_cast<const char *>(found) : searched;
}
