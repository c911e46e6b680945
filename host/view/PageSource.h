// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

// The parts of every page, made of the files in page/ at build time (EmbedPage.cmake).

extern const std::string_view PAGE_MARKUP; ///< page.html up to the place of the scripts, page.css within
extern const std::string_view PAGE_SCRIPT; ///< all .js files
extern const std::string_view PAGE_END;    ///< the rest of page.html
