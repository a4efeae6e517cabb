#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// What \a write puts into the stream that it is called with.
template <typename Write>
std::string written(Write write)
{
    char *bytes = nullptr;
    std::size_t size = 0;
    FILE *stream = open_memstream(&bytes, &size);
    write(stream);
    std::fclose(stream);
    std::string text(bytes, size);
    std::free(bytes);
    return text;
}
