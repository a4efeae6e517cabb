#include "namehash.h"

#include <sys/random.h>

const NameKey::Seed NameKey::seed;

NameKey::Seed::Seed() : numbers{0x9E3779B97F4A7C15, 0xD1B54A32D192ED03}
{
    // Where there is no randomness the numbers stay, and hashes are the same in every process.
    [[maybe_unused]] const int result = getentropy(numbers, sizeof numbers);
}

std::uint64_t NameKey::hashOf(std::string_view name)
{
    std::uint64_t hash = 0;
    for (; name.size() > sizeof hash; name.remove_prefix(sizeof hash))
        hash = mix(read<std::uint64_t>(name.data()), hash);
    // The last word overlaps the one before it.
    return mix(read<std::uint64_t>(name.data() + name.size() - sizeof hash), hash);
}
