// SPDX-License-Identifier: MIT
#include "foamfile/RawForm.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

std::uint32_t reversed(std::uint32_t bits)
{
    return __builtin_bswap32(bits);
}

std::uint64_t reversed(std::uint64_t bits)
{
    return __builtin_bswap64(bits);
}

int toLabel(std::uint32_t bits)
{
    return static_cast<int>(bits);
}

int toLabel(std::uint64_t bits)
{
    const auto value = static_cast<std::int64_t>(bits);
    // guard: wide-labels
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()
               ? static_cast<int>(value)
               : -1;
}

double toReal(std::uint32_t bits)
{
    return static_cast<double>(std::bit_cast<float>(bits));
}

double toReal(std::uint64_t bits)
{
    return std::bit_cast<double>(bits);
}

/// Converts values whose bits are a `Bits` in the file. The order of bytes is a template argument to keep the loop free
/// of branches.
template <typename Bits, bool IS_SWAPPED, typename Value, typename Convert>
void convert(const char* bytes, std::size_t count, Value* values, const Convert& toValue)
{
    for (std::size_t i = 0; i < count; ++i) {
        Bits bits = 0;
        std::memcpy(&bits, bytes + i * sizeof(Bits), sizeof(Bits));
        values[i] = toValue(IS_SWAPPED ? reversed(bits) : bits);
    }
}

template <typename Value, typename Convert>
void convert(const char* bytes, std::size_t count, std::size_t width, bool isSwapped, Value* values,
             const Convert& toValue)
{
    if (width == sizeof(std::uint64_t)) {
        isSwapped ? convert<std::uint64_t, true>(bytes, count, values, toValue)
                  : convert<std::uint64_t, false>(bytes, count, values, toValue);
    } else {
        isSwapped ? convert<std::uint32_t, true>(bytes, count, values, toValue)
                  : convert<std::uint32_t, false>(bytes, count, values, toValue);
    }
}

/// The width in bytes after a key such as "label=", which the header gives in bits.
std::size_t widthAfter(std::string_view arch, std::string_view key, std::size_t usual)
{
    const std::size_t place = arch.find(key);
    if (place == std::string_view::npos) {
        return usual;
    }
    std::string_view bits = arch.substr(place + key.size());
    bits = bits.substr(0, bits.find_first_not_of("0123456789"));
    return bits == "32" ? sizeof(std::uint32_t) : bits == "64" ? sizeof(std::uint64_t) : usual;
}

} // namespace

RawForm rawFormOfArch(std::string_view arch)
{
    constexpr bool IS_BIG = std::endian::native == std::endian::big;
    RawForm form;
    form.labelSize = widthAfter(arch, "label=", form.labelSize);
    form.realSize = widthAfter(arch, "scalar=", form.realSize);
    form.isSwapped = arch.find(IS_BIG ? "LSB" : "MSB") != std::string_view::npos;
    return form;
}

std::size_t rawBytesPerItem(std::string_view listType, const RawForm& form)
{
    struct Type
    {
        std::string_view name;
        std::size_t size;
    };
    const std::array<Type, 7> types = {{{"List<scalar>", form.realSize},
                                        {"List<vector>", 3 * form.realSize},
                                        {"List<tensor>", 9 * form.realSize},
                                        {"List<symmTensor>", 6 * form.realSize},
                                        {"List<sphericalTensor>", form.realSize},
                                        {"List<label>", form.labelSize},
                                        {"List<bool>", 1}}};
    const auto type = std::find_if(types.begin(), types.end(), [&](const Type& t) { return t.name == listType; });
    return type == types.end() ? 0 : type->size;
}

void labelsFromRaw(const char* bytes, std::size_t count, const RawForm& form, int* labels)
{
    convert(bytes, count, form.labelSize, form.isSwapped, labels, [](auto bits) { return toLabel(bits); });
}

void realsFromRaw(const char* bytes, std::size_t count, const RawForm& form, double* values)
{
    convert(bytes, count, form.realSize, form.isSwapped, values, [](auto bits) { return toReal(bits); });
}
