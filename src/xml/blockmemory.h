#pragma once

#include <cstddef>

/// Memory for a pool's block, which nobody gives back. Small processes get just what they ask
/// for. Once a mebibyte was asked for, it is cut from slabs that the kernel is told to back with
/// pages at once: most of what a large document costs is the first touch of its memory, and
/// part of that is the way into the kernel and back for each page. Throws std::bad_alloc.
char *takeBlockMemory(std::size_t size);
