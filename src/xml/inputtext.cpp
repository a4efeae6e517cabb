#include "inputtext.h"

#include <algorithm>
#include <string>

namespace
{

/// Bytes from the start of the stream to its end, 0 when it cannot tell. Leaves it at its start.
std::size_t seekSize(FILE *stream)
{
    if (fseeko(stream, 0, SEEK_END) != 0)
        return 0;
    const off_t end = ftello(stream);
    return fseeko(stream, 0, SEEK_SET) == 0 && end > 0 ? static_cast<std::size_t>(end) : 0;
}

/// What is left, however long it is.
std::string readRest(FILE *stream)
{
    constexpr std::size_t step = std::size_t{1} << 14;
    std::string rest;
    for (std::size_t got = step; got == step;) {
        const std::size_t before = rest.size();
        rest.resize(before + step);
        got = std::fread(rest.data() + before, 1, step, stream);
        rest.resize(before + got);
    }
    return rest;
}

}  // namespace

char *readText(FILE *stream, Pool *pool)
{
    std::size_t size = seekSize(stream);
    // A directory can be opened and names a size out of all reason; only reading tells.
    const int first = std::getc(stream);
    if (first == EOF)
        size = 0;
    else
        std::ungetc(first, stream);
    char *text = static_cast<char *>(pool->allocate(size + 1));
    std::size_t length = std::fread(text, 1, size, stream);
    if (length == size) {
        // A pipe cannot tell its size, and a file can have grown.
        const std::string rest = readRest(stream);
        if (!rest.empty()) {
            char *whole = static_cast<char *>(pool->allocate(length + rest.size() + 1));
            std::copy(rest.begin(), rest.end(), std::copy_n(text, length, whole));
            text = whole;
            length += rest.size();
        }
    }
    text[length] = '\0';
    return std::ferror(stream) ? nullptr : text;
}
