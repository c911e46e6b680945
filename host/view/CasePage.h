// SPDX-License-Identifier: MIT
#pragma once

#include "view/PackedArray.h"
#include "view/PageFile.h"
#include "view/PageGroups.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What goes into a page.
struct PageContent
{
    std::string name; ///< of the case, as shown
    std::vector<std::size_t> groups;
    std::vector<const HostState*> states;
    std::vector<const HostResultInfo*> results;
    std::vector<std::string> leftOut; ///< lines on what is not in the page, and why
    PagePrecision precision = PagePrecision::Floats32;
    std::uint64_t mostBytes = 0;
};

/// A group of a page.
struct ReportedGroup
{
    std::int32_t id;
    std::string name;
    const char* kind;         ///< "part", "cell zone", "patch", "face zone" or "surface"
    std::size_t elementCount; ///< cells of parts and zones, faces of others
    std::size_t faceCount;    ///< in the page
    std::size_t pointCount;   ///< of these faces
};

/// What went into a page.
struct PageReport
{
    std::vector<ReportedGroup> groups;
    std::vector<std::string> leftOut;
    std::uint64_t byteCount = 0;
    bool hasUndefined = false;
};

/// Writes all that the library delivers for the content into a page.
///
/// @param advance called after each result of each state
/// @throws HostError of `CannotWrite` if the page would be larger than it may be, with advice on what to leave out
PageReport writeCasePage(OpenedCase& opened, PageContent content, PageFile* file, const std::function<void()>& advance);
