#include "pool.h"

#include "blockmemory.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

Pool::Block *Pool::freeBlocks = nullptr;
Pool *Pool::currentPool = nullptr;

Pool::~Pool()
{
    clear();
    if (currentPool == this)
        currentPool = nullptr;
}

void *Pool::allocateFromNextBlock(std::size_t size)
{
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
    for (Block **link = &freeBlocks; *link; link = &(*link)->next) {
        if ((*link)->size >= wanted) {
            Block *taken = *link;
            *link = taken->next;
            return taken;
        }
    }
    auto made = std::make_unique<Block>(Block{nullptr, wanted, nullptr});
    made->memory = takeBlockMemory(wanted);
    return made.release();
}

void Pool::clear()
{
    while (block) {
        Block *released = block;
        block = released->next;
        std::memset(released->memory, 0xFE, released->size);
        released->next = freeBlocks;
        freeBlocks = released;
    }
    used = 0;
    capacity = 0;
    memory = nullptr;
    usedBefore = 0;
}

Pool *Pool::setCurrent(Pool *pool)
{
    Pool *previous = currentPool;
    currentPool = pool;
    return previous;
}

Pool *Pool::useDefaultPool()
{
    // Never destroyed: objects that outlive main() can lie in it.
    static Pool *defaultPool = new Pool;
    currentPool = defaultPool;
    return currentPool;
}
