#pragma once

#include <cstddef>

/// Memory for a pool's block, which nobody gives back. Small processes get just what they ask
/// for. Once a mebibyte was asked for it is cut from slabs of huge pages: most of what a large
/// document costs is the first touch of its memory, and a huge page is touched once where a
/// small one is touched 512 times. Throws std::bad_alloc.
char *takeBlockMemory(std::size_t size);
