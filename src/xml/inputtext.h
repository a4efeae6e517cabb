#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>

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

/// All that a stream holds, with a NUL behind it. A stream that can be sought is read from its
/// start, any other one from where it stands. Throws std::bad_alloc.
class InputText
{
public:
    explicit InputText(FILE *stream);

    /// Null when the stream cannot be read.
    char *text() const { return buffer.get(); }

private:
    bool readFrom(FILE *stream);
    void resize(std::size_t newCapacity);

    struct Free {
        void operator()(char *bytes) const { std::free(bytes); }
    };

    std::unique_ptr<char, Free> buffer;
    std::size_t capacity = 0;
};
