#include "namehash.h"

#include <algorithm>
#include <cstring>
#include <sys/random.h>

namespace
{

/// Two random numbers of the process. Both go into every product below, so that no factor of one
/// is known outside.
struct Seed {
    Seed()
    {
        // Without random numbers the hash is the same in every process, and works.
        if (getentropy(numbers, sizeof numbers) != 0)
            std::fill(std::begin(numbers), std::end(numbers), 0x9E3779B97F4A7C15U);
    }

    std::uint64_t numbers[2];
};

const Seed seed;

/// The 128 bits of a product, folded: every bit of the result depends on all of both factors.
std::uint64_t mix(std::uint64_t first, std::uint64_t second)
{
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(first ^ seed.numbers[0]) *
                            static_cast<Product>(second ^ seed.numbers[1]);
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

}  // namespace

std::size_t NameHash::operator()(std::string_view name) const
{
    std::uint64_t hash = name.size();
    while (!name.empty()) {
        std::uint64_t word = 0;
        std::memcpy(&word, name.data(), std::min(name.size(), sizeof word));
        hash = mix(word, hash);
        name.remove_prefix(std::min(name.size(), sizeof word));
    }
    return hash;
}
