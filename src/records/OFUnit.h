// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <vector>

/// The physical dimensions of a field as seven exponents, in the order of OpenFOAM's `dimensions` entry.
struct OFUnit
{
    signed char Kg = 0;
    signed char m = 0;
    signed char s = 0;
    signed char K = 0;
    signed char mol = 0;
    signed char A = 0;
    signed char cd = 0;

    static OFUnit fromBase(char kg, char m, char s, char K, char mol, char A, char cd);

    /// Takes the eight tokens of a line such as "dimensions [0 2 -2 0 0 0 0];" split at blanks.
    ///
    /// Any other number of tokens gives no dimensions.
    /// Compatibility (docs/compatibility.md, "last dimension exponent"): the last exponent is read from one character
    /// fewer than the token before it has, so it is usually 0.
    static OFUnit fromString(const std::vector<dvn::Str>& tokens);

    /// The text shown, such as "Kg m-1 s-2 " or "DIMENSIONLESS". Compatibility (docs/compatibility.md, "unit text"):
    /// the blank at the end stays.
    dvn::Str translate() const;
};

/// Empty for the exponent 0, "m " for 1, "m-1 " for any other.
dvn::Str unitString(char exponent, const dvn::Str& symbol);
