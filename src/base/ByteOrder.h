#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// Reading and writing of integers in byte layouts, whatever the machine's own
/// order. The pointers need no alignment; the caller has checked the length.
namespace byteorder {

template<typename Integer>
constexpr Integer readLittle(const void* bytes)
{
    const auto* source = static_cast<const unsigned char*>(bytes);
    std::make_unsigned_t<Integer> value = 0;
    for (std::size_t i = sizeof(Integer); i-- > 0;)
        value = static_cast<std::make_unsigned_t<Integer>>((std::uint64_t{value} << 8) | source[i]);
    return static_cast<Integer>(value);
}

template<typename Integer>
constexpr Integer readBig(const void* bytes)
{
    const auto* source = static_cast<const unsigned char*>(bytes);
    std::make_unsigned_t<Integer> value = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i)
        value = static_cast<std::make_unsigned_t<Integer>>((std::uint64_t{value} << 8) | source[i]);
    return static_cast<Integer>(value);
}

template<typename Integer>
constexpr void writeLittle(void* bytes, Integer value)
{
    auto* target = static_cast<unsigned char*>(bytes);
    const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
    for (std::size_t i = 0; i < sizeof(Integer); ++i)
        target[i] = static_cast<unsigned char>(std::uint64_t{bits} >> (8 * i));
}

template<typename Integer>
constexpr void writeBig(void* bytes, Integer value)
{
    auto* target = static_cast<unsigned char*>(bytes);
    const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
    for (std::size_t i = 0; i < sizeof(Integer); ++i)
        target[i] = static_cast<unsigned char>(std::uint64_t{bits} >> (8 * (sizeof(Integer) - 1 - i)));
}

} // namespace byteorder
