#pragma once

#include <cstddef>
#include <span>
#include <utility>

/// Memory that is given back all at once. Pieces are carved from blocks of at least 8192 bytes
/// and are aligned to 8. A cleared pool's blocks go to a list that every pool of the process
/// takes from; they are never returned to the heap. Nothing here reports an error; a heap that
/// is exhausted throws std::bad_alloc. One thread at a time.
class Pool
{
    struct Block {
        Block *next;
        std::size_t size;
        char *memory;
    };

public:
    Pool() = default;
    ~Pool();
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    /// \a size bytes, rounded up to a multiple of 8; none of them is initialised.
    void *allocate(std::size_t size)
    {
        // What is left of a block is a multiple of 8, so the size need not be rounded first.
        if (block && size <= capacity - used) {
            char *piece = memory + used;
            used += roundUp(size);
            return piece;
        }
        return allocateFromNextBlock(size);
    }

    /// Releases every block, filled with 0xFE so that a stale pointer shows. The pool is empty
    /// afterwards and can be used again.
    void clear();

    /// Where the pool stands: what is handed out next lies behind.
    struct Mark {
        Block *block = nullptr;  ///< null: at the beginning
        std::size_t used = 0;
    };
    Mark mark() const { return {block, used}; }

    /// Releases what was handed out since the pool stood at \a mark, which is not behind a mark that
    /// was released. Without NDEBUG it is filled with 0xFE.
    void release(const Mark &mark);

    /// Bytes handed out since the pool was last cleared, padding included; also those that were
    /// released.
    std::size_t bytesUsed() const { return usedBefore + used; }

    /// Makes \a pool the current one and returns the one that was; either can be null.
    static Pool *setCurrent(Pool *pool) { return std::exchange(currentPool, pool); }

    /// allocate() on the current pool; a default pool, kept until the process ends, becomes
    /// current when there is none.
    static void *allocateCurrent(std::size_t size)
    {
        return (currentPool ? currentPool : useDefaultPool())->allocate(size);
    }

    /// What is left of the current pool's block: the next piece will lie there if it is no larger.
    static std::span<char> currentRoom()
    {
        if (!currentPool || !currentPool->block)
            return {};
        return {currentPool->memory + currentPool->used, currentPool->capacity - currentPool->used};
    }

private:
    static std::size_t roundUp(std::size_t size) { return (size + 7) & ~std::size_t{7}; }
    static Block *takeBlock(std::size_t wanted);
    static Pool *useDefaultPool();
    [[gnu::cold]] void *allocateFromNextBlock(std::size_t size);
    void releaseBlock();

    static inline Block *freeBlocks = nullptr;
    static inline Pool *currentPool = nullptr;

    Block *block = nullptr;
    std::size_t used = 0;
    std::size_t capacity = 0;
    char *memory = nullptr;
    std::size_t usedBefore = 0;  ///< bytes handed out, but for those that used counts
};

/// An object that lives in the pool that is current when it is made. Deleting one gives nothing
/// back.
class PoolObject
{
public:
    static void *operator new(std::size_t size) { return Pool::allocateCurrent(size); }
    static void operator delete(void *) {}
};

/// Makes one pool current for as long as this object lives.
class CurrentPool
{
public:
    explicit CurrentPool(Pool *pool) : previous(Pool::setCurrent(pool)) {}
    ~CurrentPool() { Pool::setCurrent(previous); }
    CurrentPool(const CurrentPool &) = delete;
    CurrentPool &operator=(const CurrentPool &) = delete;

private:
    Pool *previous;
};
