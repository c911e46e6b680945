// SPDX-License-Identifier: MIT
#include "view/PackedArray.h"

#include "border/HostResult.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>

#include <zlib.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

std::string base64(const Bytes& bytes)
{
    static constexpr char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            bits = bits << 8U | (k < count ? bytes[i + k] : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? DIGITS[bits >> (18U - 6U * static_cast<unsigned>(k)) & 63U] : '=';
        }
    }
    return text;
}

std::string deflated(const Bytes& bytes)
{
    // The usual level: the next ones take three times as long and save a hundredth.
    constexpr int LEVEL = 6;
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    Bytes packed(size);
    if (compress2(packed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()), LEVEL) != Z_OK) {
        throw std::bad_alloc();
    }
    packed.resize(size);
    return base64(packed);
}

/// The bytes of all numbers, the lowest ones first.
template <typename Number>
Bytes bytePlanes(const std::vector<Number>& numbers)
{
    Bytes bytes(numbers.size() * sizeof(Number));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        for (std::size_t plane = 0; plane < sizeof(Number); ++plane) {
            bytes[plane * numbers.size() + i] = static_cast<std::uint8_t>(numbers[i] >> (8 * plane));
        }
    }
    return bytes;
}

/// Unsigned, so that differences wrap.
template <typename Number>
PackedArray packDifferences(std::vector<Number> numbers)
{
    for (std::size_t i = numbers.size(); i-- > 1;) {
        numbers[i] = static_cast<Number>(numbers[i] - numbers[i - 1]);
    }
    return {deflated(bytePlanes(numbers)), {{"width", sizeof(Number)}, {"count", numbers.size()}}};
}

struct ValueRange
{
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();
};

bool isOrdinary(double value)
{
    return std::isfinite(value) && value != UNDEFINED_VALUE;
}

/// Zeros if there is no ordinary value.
ValueRange rangeOf(std::span<const double> values, std::size_t component, std::size_t components)
{
    ValueRange range;
    for (std::size_t i = component; i < values.size(); i += components) {
        if (isOrdinary(values[i])) {
            range.least = std::min(range.least, values[i]);
            range.greatest = std::max(range.greatest, values[i]);
        }
    }
    return range.least <= range.greatest ? range : ValueRange{0, 0};
}

std::uint32_t floatBits(double value, double base)
{
    constexpr float MOST = std::numeric_limits<float>::max();
    if (value == UNDEFINED_VALUE) {
        return std::bit_cast<std::uint32_t>(MOST);
    }
    if (!std::isfinite(value)) {
        return std::bit_cast<std::uint32_t>(static_cast<float>(value));
    }
    // The greatest float is taken, and a value beyond it is not infinite.
    const auto most = static_cast<double>(std::nextafter(MOST, 0.0F));
    return std::bit_cast<std::uint32_t>(static_cast<float>(std::clamp(value - base, -most, most)));
}

PackedArray packFloats(std::span<const double> values, std::size_t components)
{
    // Of values that differ in the last digits only, a float would keep none of these.
    constexpr double ALIKE = 0.01;
    std::vector<std::uint32_t> bits;
    bits.reserve(values.size());
    std::vector<double> bases;
    for (std::size_t component = 0; component < components; ++component) {
        const ValueRange range = rangeOf(values, component, components);
        const double size = std::max(std::abs(range.least), std::abs(range.greatest));
        bases.push_back(range.greatest - range.least < ALIKE * size ? range.least : 0);
        for (std::size_t i = component; i < values.size(); i += components) {
            bits.push_back(floatBits(values[i], bases.back()));
        }
    }
    PackedArray packed = packDifferences(std::move(bits));
    packed.form["base"] = bases;
    return packed;
}

// The codes of values that are not ordinary, from the greatest down, and the greatest step.
constexpr std::uint16_t CODE_UNDEFINED = 65535;
constexpr std::uint16_t CODE_NAN = 65534;
constexpr std::uint16_t CODE_INFINITE = 65533;
constexpr std::uint16_t CODE_NEGATIVE_INFINITE = 65532;
constexpr double GREATEST_STEP = 65531;

std::uint16_t stepCode(double value, double base, double step)
{
    if (value == UNDEFINED_VALUE) {
        return CODE_UNDEFINED;
    }
    if (std::isnan(value)) {
        return CODE_NAN;
    }
    if (std::isinf(value)) {
        return value > 0 ? CODE_INFINITE : CODE_NEGATIVE_INFINITE;
    }
    const double steps = step > 0 ? std::round((value - base) / step) : 0;
    return static_cast<std::uint16_t>(std::clamp(steps, 0.0, GREATEST_STEP));
}

PackedArray packSteps(std::span<const double> values, std::size_t components)
{
    std::vector<std::uint16_t> codes;
    codes.reserve(values.size());
    std::vector<double> bases;
    std::vector<double> steps;
    for (std::size_t component = 0; component < components; ++component) {
        const ValueRange range = rangeOf(values, component, components);
        bases.push_back(range.least);
        // Divided first, because the difference may be beyond the greatest double.
        steps.push_back(range.greatest / GREATEST_STEP - range.least / GREATEST_STEP);
        for (std::size_t i = component; i < values.size(); i += components) {
            codes.push_back(stepCode(values[i], bases.back(), steps.back()));
        }
    }
    PackedArray packed = packDifferences(std::move(codes));
    packed.form["base"] = bases;
    packed.form["step"] = steps;
    return packed;
}

} // namespace

PackedArray packIntegers(const std::vector<std::int32_t>& values)
{
    return packDifferences(std::vector<std::uint32_t>(values.begin(), values.end()));
}

PackedArray packBytes(const std::vector<std::uint8_t>& values)
{
    return packDifferences(values);
}

PackedArray packDoubles(const std::vector<double>& values)
{
    std::vector<std::uint64_t> bits(values.size());
    std::ranges::transform(values, bits.begin(), [](double value) { return std::bit_cast<std::uint64_t>(value); });
    return {deflated(bytePlanes(bits)), {{"width", sizeof(double)}, {"count", values.size()}}};
}

PackedArray packValues(std::span<const double> values, std::size_t components, PagePrecision precision)
{
    PackedArray packed =
        precision == PagePrecision::Steps16 ? packSteps(values, components) : packFloats(values, components);
    packed.form["components"] = components;
    return packed;
}
