// SPDX-License-Identifier: MIT
#include "records/OFUnit.h"

#include <cstddef>

namespace {

constexpr std::size_t DIMENSION_TOKEN_COUNT = 8;

/// Keeps the low 8 bits, since exponents are bytes.
signed char exponentOf(const dvn::Str& text)
{
    return static_cast<signed char>(static_cast<unsigned char>(text.toInt(0)));
}

/// Up to `length` characters from `start`; empty if the text is too short.
dvn::Str piece(const dvn::Str& text, std::size_t start, std::size_t length)
{
    return start < text.size() ? text.subStr(start, length) : dvn::Str();
}

} // namespace

OFUnit OFUnit::fromBase(char kg, char m, char s, char K, char mol, char A, char cd)
{
    const auto exponent = [](char value) { return static_cast<signed char>(value); };
    return {exponent(kg), exponent(m), exponent(s), exponent(K), exponent(mol), exponent(A), exponent(cd)};
}

OFUnit OFUnit::fromString(const std::vector<dvn::Str>& tokens)
{
    OFUnit unit;
    if (tokens.size() != DIMENSION_TOKEN_COUNT) {
        return unit;
    }
    unit.Kg = exponentOf(piece(tokens[1], 1, tokens[1].size()));
    unit.m = exponentOf(tokens[2]);
    unit.s = exponentOf(tokens[3]);
    unit.K = exponentOf(tokens[4]);
    unit.mol = exponentOf(tokens[5]);
    unit.A = exponentOf(tokens[6]);
    // Compatibility (docs/compatibility.md, "last dimension exponent"): the length is that of the token before. Tokens
    // are never empty, so it does not wrap.
    unit.cd = exponentOf(piece(tokens[7], 0, tokens[6].size() - 1));
    return unit;
}

dvn::Str OFUnit::translate() const
{
    const auto text = [](signed char exponent, const char* symbol) {
        return unitString(static_cast<char>(exponent), symbol);
    };
    const dvn::Str joined =
        text(Kg, "Kg") + text(m, "m") + text(s, "s") + text(K, "K") + text(mol, "mol") + text(A, "A") + text(cd, "cd");
    return joined.isEmpty() ? dvn::Str("DIMENSIONLESS") : joined;
}

dvn::Str unitString(char exponent, const dvn::Str& symbol)
{
    // NOLINTNEXTLINE(bugprone-signed-char-misuse,cert-str34-c): exponents are negative where a dimension divides.
    const int value = static_cast<signed char>(exponent);
    if (value == 0) {
        return dvn::Str();
    }
    if (value == 1) {
        return dvn::Str("%1 ").arg(symbol);
    }
    return dvn::Str("%1%2 ").arg(symbol).arg(value);
}
