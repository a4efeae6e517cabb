#pragma once

#include <cstddef>
#include <cstdint>

/// What a document may ask of the walk. Beyond a bound the run ends in an error that names it.
struct Limits {
    /// Elements nested in each other, those of included files and fragments counted where they
    /// stand. The default takes less than half of a stack of 8 MiB.
    int nestedLevels = 5000;
    int nestedIncludes = 200;
    /// Rounds of one <for>, combinations of one <foreach>.
    unsigned loopRounds = 10'000'000;
    /// Bytes that directives bring into the document's pool: copies, expanded values, included
    /// trees.
    std::size_t growth = std::size_t{1} << 30;
    /// Steps of about a nanosecond, beyond 128 for every byte of the document and of each file that
    /// it includes, and 8 for every byte that directives bring in. Copies share their text,
    /// so that a small document can have a large expression evaluated again and again without
    /// growing.
    std::uint64_t work = std::uint64_t{1} << 31;
};
