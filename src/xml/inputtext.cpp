#include "inputtext.h"

#include <algorithm>
#include <string>

namespace
{

/// Bytes from the start of the stream to its end, 0 when it cannot tell. The position stays.
std::size_t seekSize(FILE *stream)
{
    const off_t position = ftello(stream);
    if (position < 0 || fseeko(stream, 0, SEEK_END) != 0)
        return 0;
    const off_t end = ftello(stream);
    return fseeko(stream, position, SEEK_SET) == 0 && end > 0 ? static_cast<std::size_t>(end) : 0;
}

/// What is left, however long it is.
std::string readRest(FILE *stream)
{
    constexpr std::size_t step = std::size_t{1} << 16;
    std::string rest;
    for (std::size_t got = step; got == step;) {
        const std::size_t before = rest.size();
        rest.resize(before + step);
        got = std::fread(rest.data() + before, 1, step, stream);
        rest.resize(before + got);
    }
    return rest;
}

char *allocateText(std::size_t length, Pool *pool)
{
    char *text = static_cast<char *>(pool->allocate(length + 1));
    text[length] = '\0';
    return text;
}

}  // namespace

char *readText(FILE *stream, Pool *pool)
{
    // Most files end within the first piece, and a directory, which names a size out of all
    // reason, fails with it.
    char first[std::size_t{1} << 14];
    const std::size_t firstLength = std::fread(first, 1, sizeof first, stream);
    if (std::ferror(stream))
        return nullptr;
    const std::size_t size =
        firstLength < sizeof first ? firstLength : std::max(seekSize(stream), firstLength);
    char *text = allocateText(size, pool);
    std::copy_n(first, firstLength, text);
    const std::size_t length =
        firstLength + std::fread(text + firstLength, 1, size - firstLength, stream);
    text[length] = '\0';
    if (length == size && !std::feof(stream)) {
        // A pipe cannot tell its size, and a file can have grown.
        const std::string rest = readRest(stream);
        if (!rest.empty()) {
            char *whole = allocateText(length + rest.size(), pool);
            std::copy(rest.begin(), rest.end(), std::copy_n(text, length, whole));
            text = whole;
        }
    }
    return std::ferror(stream) ? nullptr : text;
}
