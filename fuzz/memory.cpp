#include "check.h"

#include <new>

bool isMemoryShort = false;

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return isMemoryShort && size > 32768 ? nullptr : std::malloc(size);
}

void *operator new(std::size_t size)
{
    void *memory = operator new(size, std::nothrow);
    return memory ? memory : throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
