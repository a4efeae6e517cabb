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

/// All that \a stream holds from where it stands, with a NUL behind it, in \a pool. Its data is
/// null when it cannot be read.
std::span<char> readText(FILE *stream, Pool *pool);
