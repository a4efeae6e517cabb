#include "inputtext.h"

#include <algorithm>
#include <cstring>
#include <sys/stat.h>

namespace
{

/// Bytes that are searched for a NUL before more is read.
constexpr std::size_t piece = std::size_t{1} << 16;

/// The size of the stream's file, zero where that is no regular one. *stored receives how much of it
/// takes room on the disk: a sparse file claims any size.
std::size_t fileSize(FILE *stream, std::size_t *stored)
{
    struct stat status = {};
    const int descriptor = fileno(stream);
    if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return 0;
    const auto size = static_cast<std::size_t>(status.st_size);
    *stored = std::min(size, static_cast<std::size_t>(status.st_blocks) * 512);
    return size;
}

/// What is left, however long it is, up to a piece more than \a most bytes.
std::string readRest(FILE *stream, std::size_t most)
{
    std::string rest;
    for (bool isEnd = false; !isEnd && rest.size() <= most;) {
        const std::size_t before = rest.size();
        rest.resize(before + piece);
        rest.resize(before + readPieces(stream, rest.data() + before, piece, &isEnd));
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

InputStream openInput(const char *fileName)
{
    InputStream stream(openFile(fileName, "rb"));
    if (stream)
        std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    return stream;
}

std::size_t readPieces(FILE *stream, char *to, std::size_t size, bool *isEnd)
{
    std::size_t length = 0;
    while (length < size && !*isEnd) {
        const std::size_t wanted = std::min(piece, size - length);
        const std::size_t got = std::fread(to + length, 1, wanted, stream);
        const void *nul = std::memchr(to + length, '\0', got);
        *isEnd = nul || got < wanted;
        length = nul ? static_cast<std::size_t>(static_cast<const char *>(nul) - to) : length + got;
    }
    return length;
}

std::span<char> readText(FILE *stream, std::size_t most, Pool *pool, bool *isTooLong)
{
    // Most files end within the first piece, and a directory, which names a size out of all
    // reason, fails with it.
    char first[std::size_t{1} << 14];
    const std::size_t got = std::fread(first, 1, sizeof first, stream);
    if (std::ferror(stream))
        return {};
    std::size_t stored = 0;
    *isTooLong = got > most || (got == sizeof first && fileSize(stream, &stored) > most);
    if (*isTooLong)
        return {};
    const std::size_t firstLength = std::string_view(first, got).find('\0');
    bool isEnd = got < sizeof first || firstLength != std::string_view::npos;
    std::size_t length = std::min(firstLength, got);
    const std::size_t room = isEnd ? length : std::max(stored, length);
    char *text = allocateText(room, pool);
    std::copy_n(first, length, text);
    length += readPieces(stream, text + length, room - length, &isEnd);
    text[length] = '\0';
    // A pipe cannot tell its size, a file can have grown, and what a file takes can be less than
    // it holds.
    const std::string rest = isEnd ? std::string() : readRest(stream, most - length);
    *isTooLong = rest.size() > most - length;
    if (std::ferror(stream) || *isTooLong)
        return {};
    if (!rest.empty()) {
        char *whole = allocateText(length + rest.size(), pool);
        std::copy(rest.begin(), rest.end(), std::copy_n(text, length, whole));
        text = whole;
        length += rest.size();
    }
    return {text, length};
}
