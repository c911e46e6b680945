// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/OFFile.h"

#include <string>

/// The start of a text of a file, as a message shows it. What is filled into a message is searched for placeholders
/// like the message itself, so two long texts could multiply.
inline dvn::Str excerpt(const std::string& text)
{
    constexpr std::size_t LONGEST = 256;
    return dvn::Str(text.substr(0, LONGEST));
}

/// What one reader reports of the header and the count of its file; %1 is the path as given.
struct OFFile::ListMessages
{
    const char* openFailed;
    const char* wrongObject;
    const char* wrongClass;
    const char* noCount;
    const char* badCount;
};
