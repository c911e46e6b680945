// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A word quoted for a shell where necessary.
std::string shellWord(const std::string& word);
