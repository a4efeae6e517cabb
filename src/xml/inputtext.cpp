#include "inputtext.h"

#include <algorithm>
#include <sys/stat.h>

namespace
{

/// Bytes of the file behind the stream, 0 when it cannot tell.
std::size_t fileSize(FILE *stream)
{
    struct stat status = {};
    const int descriptor = fileno(stream);
    const bool isKnown =
        descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return isKnown ? static_cast<std::size_t>(status.st_size) : 0;
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

FILE *openFile(const std::string &name, const char *mode)
{
    return std::fopen(name.c_str(), mode);
}

std::span<char> readText(FILE *stream, Pool *pool)
{
    // Most files end within the first piece, and a directory, which names a size out of all
    // reason, fails with it.
    char first[std::size_t{1} << 14];
    const std::size_t firstLength = std::fread(first, 1, sizeof first, stream);
    if (std::ferror(stream))
        return {};
    const std::size_t size =
        firstLength < sizeof first ? firstLength : std::max(fileSize(stream), firstLength);
    char *text = allocateText(size, pool);
    std::copy_n(first, firstLength, text);
    std::size_t length =
        firstLength + std::fread(text + firstLength, 1, size - firstLength, stream);
    text[length] = '\0';
    if (length == size && !std::feof(stream)) {
        // A pipe cannot tell its size, and a file can have grown.
        const std::string rest = readRest(stream);
        if (!rest.empty()) {
            char *whole = allocateText(length + rest.size(), pool);
            std::copy(rest.begin(), rest.end(), std::copy_n(text, length, whole));
            text = whole;
            length += rest.size();
        }
    }
    if (std::ferror(stream))
        return {};
    return {text, length};
}
