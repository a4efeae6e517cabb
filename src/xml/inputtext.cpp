#include "inputtext.h"

#include <algorithm>
#include <new>

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

}  // namespace

InputText::InputText(FILE *stream)
{
    if (!readFrom(stream))
        buffer.reset();
}

bool InputText::readFrom(FILE *stream)
{
    constexpr std::size_t leastRoom = 4096;
    const std::size_t size = seekSize(stream);
    // A directory can be opened and names a size out of all reason; only reading tells.
    const int first = std::getc(stream);
    if (first == EOF && std::ferror(stream))
        return false;
    resize((first == EOF ? 0 : size) + 2);
    std::size_t length = 0;
    if (first != EOF)
        buffer.get()[length++] = static_cast<char>(first);
    for (std::size_t got = length; got > 0; length += got) {
        if (capacity - length < 2)
            resize(capacity + std::max(capacity, leastRoom));
        got = std::fread(buffer.get() + length, 1, capacity - length - 1, stream);
    }
    buffer.get()[length] = '\0';
    return !std::ferror(stream);
}

void InputText::resize(std::size_t newCapacity)
{
    char *bytes = static_cast<char *>(std::realloc(buffer.get(), newCapacity));
    if (!bytes)
        throw std::bad_alloc();
    (void)buffer.release();  // realloc() has taken it over
    buffer.reset(bytes);
    capacity = newCapacity;
}
