#include "pool.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <sys/mman.h>

namespace
{

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// Behind the end of what is handed out, for who reads sixteen bytes of a string at once.
constexpr std::size_t margin = 16;

/// Starts at a page, as the kernel also copies a file faster to there.
char *makeSlab(std::size_t size)
{
    auto *memory = static_cast<char *>(::operator new (size + margin, std::align_val_t{4096}));
#ifdef MADV_POPULATE_WRITE
    // Only advice: where it is not taken, the memory is the same.
    madvise(memory, size, MADV_POPULATE_WRITE);
#endif
    return memory;
}

/// Small processes get just what they ask for. Once a mebibyte was asked for, memory is cut from
/// slabs that the kernel is told to back with pages at once: most of what a large document costs
/// is the first touch of its memory, and part of that is the way into the kernel and back for each
/// page. A slab takes no more than a quarter of what was asked for, so that little is backed in
/// vain.
char *takeMemory(std::size_t size)
{
    static std::size_t total = 0;
    static char *slab = nullptr;
    static std::size_t slabLeft = 0;
    total += size;
    if (total < mebibyte)
        return new char[size + margin];
    const std::size_t slabSize = std::min(std::bit_floor(total / 4), mebibyte);
    if (size > slabSize)
        return makeSlab(size);
    if (size > slabLeft) {
        slab = makeSlab(slabSize);
        slabLeft = slabSize;
    }
    slabLeft -= size;
    return std::exchange(slab, slab + size);
}

}  // namespace

Pool::~Pool()
{
    clear();
    if (currentPool == this)
        currentPool = nullptr;
}

void *Pool::allocateFromNextBlock(std::size_t size)
{
    constexpr std::size_t smallestBlock = 8192;
    const std::size_t rounded = roundUp(size);
    if (rounded < size)
        throw std::bad_alloc();
    Block *next = takeBlock(std::max(rounded, smallestBlock));
    next->next = block;
    block = next;
    usedBefore += used;
    used = rounded;
    capacity = next->size;
    memory = next->memory;
    return memory;
}

Pool::Block *Pool::takeBlock(std::size_t wanted)
{
    // Only the latest are looked at: each large piece could have to search many small blocks.
    constexpr int most = 64;
    Block **link = &freeBlocks;
    for (int looked = 0; *link && looked < most; ++looked, link = &(*link)->next) {
        if ((*link)->size >= wanted)
            return std::exchange(*link, (*link)->next);
    }
    auto made = std::make_unique<Block>(Block{nullptr, wanted, nullptr});
    made->memory = takeMemory(wanted);
    return made.release();
}

void Pool::releaseBlock()
{
    Block *const released = block;
    block = released->next;
    released->next = std::exchange(freeBlocks, released);
}

void Pool::clear()
{
    while (block) {
        std::memset(block->memory, 0xFE, block->size);
        releaseBlock();
    }
    used = 0;
    usedBefore = 0;
}

void Pool::release(const Mark &mark)
{
    const std::size_t handedOut = bytesUsed();
#ifndef NDEBUG
    for (const Block *each = block; each; each = each == mark.block ? nullptr : each->next) {
        const std::size_t kept = each == mark.block ? mark.used : 0;
        std::memset(each->memory + kept, 0xFE, each->size - kept);
    }
#endif
    while (block != mark.block)
        releaseBlock();
    used = mark.used;
    usedBefore = handedOut - used;
    capacity = block ? block->size : 0;
    memory = block ? block->memory : nullptr;
}

Pool *Pool::useDefaultPool()
{
    // Never destroyed: objects that outlive main() can lie in it.
    static Pool *defaultPool = new Pool;
    return currentPool = defaultPool;
}
