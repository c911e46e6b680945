// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

/// How a binary file holds labels and scalars. The default is the usual form: that of the machine's `int` and `double`.
struct RawForm
{
    std::size_t labelSize = sizeof(int);   ///< bytes of a label, 4 or 8
    std::size_t realSize = sizeof(double); ///< bytes of a scalar, 4 or 8
    bool isSwapped = false;                ///< whether the bytes of a value are in the other order than the machine's

    bool hasUsualLabels() const { return labelSize == sizeof(int) && !isSwapped; }
    bool hasUsualReals() const { return realSize == sizeof(double) && !isSwapped; }
};

/// The form that the `arch` entry of a header states, such as "LSB;label=32;scalar=64", with or without quotes.
/// Whatever the entry does not state, or states as a width that OpenFOAM does not have, is usual.
RawForm rawFormOfArch(std::string_view arch);

/// Bytes of one item of a raw list such as "List<vector>"; 0 for an unknown type.
std::size_t rawBytesPerItem(std::string_view listType, const RawForm& form);

/// Converts raw labels. One that does not fit an int gives -1, which every check of labels refuses.
void labelsFromRaw(const char* bytes, std::size_t count, const RawForm& form, int* labels);
/// Converts raw scalars.
void realsFromRaw(const char* bytes, std::size_t count, const RawForm& form, double* values);
