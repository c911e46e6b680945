// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/OFFile.h"

/// What one reader reports of the header and the count of its file; %1 is the path as given.
struct OFFile::ListMessages
{
    const char* openFailed;
    const char* wrongObject;
    const char* wrongClass;
    const char* noCount;
    const char* badCount;
};
