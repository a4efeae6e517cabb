#pragma once

#include "pool.h"

#include <cstdio>
#include <span>

/// A stream that is closed with this object; null when it could not be opened.
class InputStream
{
public:
    explicit InputStream(FILE *opened) : stream(opened) {}
    ~InputStream()
    {
        if (stream)
            std::fclose(stream);
    }
    InputStream(const InputStream &) = delete;
    InputStream &operator=(const InputStream &) = delete;

    FILE *get() const { return stream; }

private:
    FILE *stream;
};

/// All that \a stream holds from where it stands, with a NUL behind it, in \a pool. Its data is
/// null when it cannot be read.
std::span<char> readText(FILE *stream, Pool *pool);
