#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Hashes names for the unordered containers of the standard library, in every process in another
/// way: no document can hold names that are known to collide.
struct NameHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view name) const;
};
