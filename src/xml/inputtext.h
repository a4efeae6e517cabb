#pragma once

#include "pool.h"

#include <cstdio>
#include <memory>
#include <span>
#include <string>

/// Opens a C stream as fopen() does; null when the file cannot be opened. Every file that a document
/// is read from is opened here, so that a program that keeps its files elsewhere can bring this and
/// the next operation of its own.
FILE *openFile(const std::string &name, const char *mode);

/// Whether the file can be read again: a pipe cannot, and some devices. Found out without opening it.
bool canBeReadAgain(const std::string &name);

struct CloseStream {
    void operator()(FILE *stream) const { std::fclose(stream); }
};
using InputStream = std::unique_ptr<FILE, CloseStream>;

/// The file as it is read best, into memory of the caller's own: without a buffer in between.
InputStream openInput(const char *fileName);

/// Reads up to \a size bytes, but none behind the piece that holds the first NUL, and returns how
/// many stand before that. *isEnd tells that there is no more to be read.
std::size_t readPieces(FILE *stream, char *to, std::size_t size, bool *isEnd);

/// What \a stream holds from where it stands up to its first NUL byte, with a NUL behind it, in
/// \a pool. Nothing behind that byte is read but for the rest of one piece. Its data is null when it
/// cannot be read, and when it is longer than \a most bytes, which *isTooLong then tells: a
/// regular file by its size before it is read, any other as soon as it is.
std::span<char> readText(FILE *stream, std::size_t most, Pool *pool, bool *isTooLong);
