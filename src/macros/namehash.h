#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <sys/random.h>

/// A name as two numbers and its length. Of names of up to 16 bytes no two have the same, so that
/// comparing them takes no call; of a longer one the numbers are a hash.
class NameKey
{
public:
    static constexpr std::size_t mostBytes = 16;

    explicit NameKey(std::string_view name) : length(name.size())
    {
        const char *const end = name.data() + length;
        if (length > mostBytes) {
            first = hashOf(name);
        } else if (length >= 8) {
            first = read<std::uint64_t>(name.data());
            second = read<std::uint64_t>(end - 8);
        } else if (length >= 4) {
            first = read<std::uint32_t>(name.data());
            second = read<std::uint32_t>(end - 4);
        } else if (length > 0) {
            first = read<std::uint8_t>(name.data());
            second = read<std::uint8_t>(name.data() + length / 2);
            second = second << 8 | read<std::uint8_t>(end - 1);
        }
    }

    bool operator==(const NameKey &) const = default;

    /// Whether equal keys are equal names.
    bool isName() const { return length <= mostBytes; }

    /// Differs from process to process: no document can hold names that are known to collide.
    std::size_t hash() const { return static_cast<std::size_t>(mix(first, second ^ length)); }

private:
    /// Two random numbers of the process, one for each factor of every product. Where there is no
    /// randomness they are the same in every process.
    struct Seed {
        Seed() { [[maybe_unused]] const int result = getentropy(numbers, sizeof numbers); }
        std::uint64_t numbers[2] = {0x9E3779B97F4A7C15, 0xD1B54A32D192ED03};
    };
    static inline const Seed seed;

    template <typename Number>
    static Number read(const char *from)
    {
        Number number;
        std::memcpy(&number, from, sizeof number);
        return number;
    }

    /// The halves of a product on each other: every bit depends on all of both factors.
    static std::uint64_t mix(std::uint64_t one, std::uint64_t other)
    {
        const std::uint64_t a = one ^ seed.numbers[0];
        const std::uint64_t b = other ^ seed.numbers[1];
#ifdef __SIZEOF_INT128__
        __extension__ using Product = unsigned __int128;
        const Product product = static_cast<Product>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
        constexpr std::uint64_t low = 0xFFFFFFFF;
        const std::uint64_t crossed = (a >> 32) * (b & low) + ((a & low) * (b & low) >> 32);
        const std::uint64_t middle = (a & low) * (b >> 32) + (crossed & low);
        return (a * b) ^ ((a >> 32) * (b >> 32) + (crossed >> 32) + (middle >> 32));
#endif
    }

    static std::uint64_t hashOf(std::string_view name)
    {
        std::uint64_t hash = 0;
        for (; name.size() > sizeof hash; name.remove_prefix(sizeof hash))
            hash = mix(read<std::uint64_t>(name.data()), hash);
        // The last word overlaps the one before it.
        return mix(read<std::uint64_t>(name.data() + name.size() - sizeof hash), hash);
    }

    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::size_t length;
};

/// NameKey for the unordered containers of the standard library.
struct NameHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view name) const { return NameKey(name).hash(); }
};
