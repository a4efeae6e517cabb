#include "blockmemory.h"

#include <algorithm>
#include <bit>
#include <new>
#include <sys/mman.h>

namespace
{

constexpr std::size_t slabsBegin = std::size_t{1} << 20;
/// A slab takes no more than a quarter of what was asked for, so that little is backed in vain.
constexpr std::size_t largestSlab = std::size_t{1} << 20;
/// The kernel also copies a file faster to the start of a page.
constexpr std::align_val_t page{4096};

char *makeSlab(std::size_t size)
{
    auto *memory = static_cast<char *>(::operator new(size, page));
#ifdef MADV_POPULATE_WRITE
    // Only advice: where it is not taken, the memory is the same.
    madvise(memory, size, MADV_POPULATE_WRITE);
#endif
    return memory;
}

}  // namespace

char *takeBlockMemory(std::size_t size)
{
    static std::size_t total = 0;
    static char *slab = nullptr;
    static std::size_t slabLeft = 0;
    total += size;
    if (total < slabsBegin)
        return new char[size];
    const std::size_t slabSize = std::min(std::bit_floor(total / 4), largestSlab);
    if (size > slabSize)
        return makeSlab(size);
    if (size > slabLeft) {
        slab = makeSlab(slabSize);
        slabLeft = slabSize;
    }
    char *memory = slab;
    slab += size;
    slabLeft -= size;
    return memory;
}
