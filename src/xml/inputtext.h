#pragma once

#include "pool.h"

#include <cstdio>
#include <memory>
#include <span>
#include <string>

/// Opens a C stream as fopen() does; null when the file cannot be opened. Every file that a document
/// is read from is opened here, so that a program that keeps its files elsewhere can bring an
/// openFile() of its own.
FILE *openFile(const std::string &name, const char *mode);

struct CloseStream {
    void operator()(FILE *stream) const { std::fclose(stream); }
};
using InputStream = std::unique_ptr<FILE, CloseStream>;

/// What \a stream holds from where it stands up to its first NUL byte, with a NUL behind it, in
/// \a pool. Nothing behind that byte is read but for the rest of one piece. Its data is null when it
/// cannot be read, and when it is longer than \a most bytes, which *isTooLong then tells: a
/// regular file by its size before it is read, any other as soon as it is.
std::span<char> readText(FILE *stream, std::size_t most, Pool *pool, bool *isTooLong);
