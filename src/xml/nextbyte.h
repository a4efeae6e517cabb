#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <span>

/// Where a byte occurs in text that is read from its start to its end: each part of the text is
/// searched once, and just before it is read, as that brings it into the cache. The search goes by
/// length: a NUL does not stop it. Places are asked for in the order of the text, and lie in it or
/// at its end.
class NextByte
{
public:
    NextByte(char wantedByte, std::span<const char> text)
        : byte(wantedByte),
          next(text.data()),
          searched(text.data()),
          end(text.data() + text.size())
    {
    }

    /// Passes what is before \a where.
    void passTo(const char *where)
    {
        if (next < where)
            find(where);
    }
    /// Whether the byte is between what was passed and \a where.
    bool isBefore(const char *where)
    {
        while (next < where && next == searched)
            find(next);
        return next < where;
    }

private:
    void find(const char *from)
    {
        assert(next <= from && from <= end);
        constexpr std::ptrdiff_t step = 1 << 15;
        searched = from + std::min(step, end - from);
        const void *found = std::memchr(from, byte, static_cast<std::size_t>(searched - from));
        next = found ? static_cast<const char *>(found) : searched;
    }

    char byte;
    const char *next;  ///< the first occurrence that was not passed; \a searched when none is known
    const char *searched;
    const char *end;
};
