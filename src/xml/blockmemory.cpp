#include "blockmemory.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace
{

constexpr std::size_t hugePage = std::size_t{2} << 20;
constexpr std::size_t slabSize = 2 * hugePage;
constexpr std::size_t slabsBegin = std::size_t{1} << 20;

/// What is left of the newest slab.
char *slab = nullptr;
std::size_t slabLeft = 0;

char *makeSlab(std::size_t size)
{
    auto *memory = static_cast<char *>(std::aligned_alloc(hugePage, size));
    if (!memory)
        throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    // Only advice: where it is not taken, the memory is the same.
    madvise(memory, size, MADV_HUGEPAGE);
#endif
    return memory;
}

}  // namespace

char *takeBlockMemory(std::size_t size)
{
    static std::size_t total = 0;
    total += size;
    if (total < slabsBegin)
        return new char[size];
    if (size > slabLeft) {
        const std::size_t pages = (size + hugePage - 1) / hugePage;
        const std::size_t made = std::max(pages * hugePage, slabSize);
        if (made < size)
            throw std::bad_alloc();
        char *memory = makeSlab(made);
        // The larger rest is the one that is worth keeping.
        if (made - size <= slabLeft)
            return memory;
        slab = memory;
        slabLeft = made;
    }
    char *memory = slab;
    slab += size;
    slabLeft -= size;
    return memory;
}
