#pragma once

#include <QHashFunctions>

#include <cstddef>
#include <string_view>

/// Hashes names for the unordered containers of the standard library, with the seed that Qt draws
/// for each process: no document can hold names that are known to collide.
struct NameHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view name) const
    {
        return qHashBits(name.data(), name.size(), QHashSeed::globalSeed());
    }
};
