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

/// What went into a page, for the report.
struct PageReport
{
    nlohmann::ordered_json groups; ///< as in the page
    std::vector<std::string> leftOut;
    std::uint64_t byteCount = 0;
    bool hasUndefined = false;
};

/// Writes all that the library delivers for the content into a page.
///
/// @param advance called after each result of each state
/// @throws HostError of `CannotWrite` if the page would be larger than it may be, with advice on what to leave out
PageReport writeCasePage(OpenedCase& opened, PageContent content, PageFile* file, const std::function<void()>& advance);
