/**
 * @file type.h
 * How the bytes of a field are read. All are little-endian.
 */
#ifndef DICTIONARY_TYPE_H
#define DICTIONARY_TYPE_H

#include <cstdint>
#include <ctime>
#include <string_view>
#include <type_traits>

namespace dictionary
{

/** The type of a value in a record. The numbers are written to files: they never change. */
enum class Type : std::uint8_t
{
    i32 = 1,      /**< also every enumeration and BOOL */
    u32 = 2,      /**< */
    i64 = 3,      /**< also time_t */
    u64 = 4,      /**< */
    u8 = 5,       /**< */
    f32 = 6,      /**< IEEE 754 binary32 */
    timespec = 7, /**< seconds, then nanoseconds, each an i64 */
    text = 8,     /**< characters up to a NUL or the end of the array */
    bytes = 9,    /**< an array of bytes */
};

/** The short name of a type: "u64". */
constexpr std::string_view type_name(Type type)
{
    constexpr std::string_view names[] = {"", "i32", "u32", "i64", "u64", "u8", "f32", "timespec", "text", "bytes"};
    return names[static_cast<std::size_t>(type)];
}

/** The type of a C type's values. */
template <typename T> constexpr Type type_of()
{
    if constexpr (std::is_array_v<T>)
    {
        static_assert(sizeof(std::remove_extent_t<T>) == 1, "fields are texts, bytes or single values");
        return std::is_same_v<std::remove_extent_t<T>, char> ? Type::text : Type::bytes;
    }
    else if constexpr (std::is_same_v<T, std::timespec>)
        return Type::timespec;
    else if constexpr (std::is_same_v<T, float>)
        return Type::f32;
    else if constexpr (std::is_enum_v<T>)
        return type_of<std::underlying_type_t<T>>();
    else
    {
        static_assert(std::is_integral_v<T> && (sizeof(T) == 4 || sizeof(T) == 8 || (sizeof(T) == 1 && std::is_unsigned_v<T>)));
        if (sizeof(T) == 1) return Type::u8;
        if (sizeof(T) == 4) return std::is_signed_v<T> ? Type::i32 : Type::u32;
        return std::is_signed_v<T> ? Type::i64 : Type::u64;
    }
}

} // namespace dictionary

#endif
