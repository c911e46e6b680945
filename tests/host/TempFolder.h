// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder of its own for one test, gone when the test is.
class TempFolder
{
public:
    TempFolder()
    {
        std::string pattern = ::testing::TempDir() + "ddphost-XXXXXX";
        m_path = mkdtemp(pattern.data());
    }

    ~TempFolder() { std::filesystem::remove_all(m_path); }

    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

inline std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}
