// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

namespace tarnwell::test
{

/// Aborts if the invariant does not hold, so that the fuzzer saves the input.
inline void verify(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "invariant violated: %s\n", what);
    std::abort();
}

inline std::string bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Pseudo-random numbers seeded with a hash of the input, so that the same input makes the same choices.
class Choices
{
public:
    explicit Choices(std::string_view input)
        : m_engine(static_cast<std::uint32_t>(std::hash<std::string_view>{}(input)))
    {
    }

    std::size_t below(std::size_t limit) { return m_engine() % limit; }

private:
    std::mt19937 m_engine;
};

} // namespace tarnwell::test
