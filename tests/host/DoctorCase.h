// SPDX-License-Identifier: MIT
// Cases for the tests of "ddphost doctor", and what it says of them.
#pragma once

#include "host/ProgramRun.h"
#include "support/CaseFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace doctor {

using nlohmann::json;
using Seed = std::function<void(const TempFolder&)>;

inline constexpr const char* MESH = "constant/polyMesh";

/// Something to change in a case of which a host shows everything, and what is to be said of it then.
struct Fault
{
    const char* name;
    Seed seed;
    const char* finding;        ///< "KIND CAUSE FILE", several with commas; empty if there is nothing to say
    const char* text = nullptr; ///< with which the line that it names begins, blanks aside; null if it names none
};

/// Writes a case of two cubes at the times 0.5 and 1, of which a host shows everything.
inline void writeSound(const TempFolder& folder)
{
    std::filesystem::remove_all(folder / "constant");
    writeControlDict(folder);
    writeTwoCubes(folder);
    std::filesystem::remove(folder / "constant/polyMesh/faceZones");
    writePressure(folder, "0.5");
    writePressure(folder, "1");
}

/// What is said of the case in the folder.
inline json examine(const TempFolder& folder, int code, const std::string& more = "")
{
    const TempFolder output;
    const ProgramRun run = runProgram(output, "doctor --json " + more + inQuotes(folder.path()));
    EXPECT_EQ(run.code, code) << run.err;
    EXPECT_EQ(run.err, "");
    const json document = json::parse(run.out, nullptr, false);
    EXPECT_TRUE(document.contains("case")) << run.out;
    return document.contains("case") ? document["case"] : json({{"findings", json::array()}});
}

/// "KIND CAUSE PLACE" of each finding.
inline std::string findingsIn(const json& found)
{
    Texts texts;
    for (const json& finding : found["findings"]) {
        const json& line = finding["line"];
        texts.push_back(finding["kind"].get<std::string>() + " " + finding["cause"].get<std::string>() + " " +
                        finding["file"].get<std::string>() +
                        (line.is_null() ? "" : ":" + std::to_string(line.get<int>())));
    }
    return joined(texts);
}

/// The line of a file that begins with a text.
inline int lineOf(const TempFolder& folder, const std::string& file, const std::string& text)
{
    std::istringstream lines(fileBytes(folder / file));
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::size_t first = line.find_first_not_of(' ');
        if (first != std::string::npos && line.compare(first, text.size(), text) == 0) {
            return number;
        }
    }
    return 0;
}

/// Seeds each fault into a case of its own and compares what is said of it.
inline void expectFindings(const std::vector<Fault>& faults, const std::string& more = "")
{
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        const TempFolder folder;
        writeSound(folder);
        fault.seed(folder);
        std::string expected = fault.finding;
        if (fault.text != nullptr) {
            const std::string file = expected.substr(expected.rfind(' ') + 1);
            expected += ":" + std::to_string(lineOf(folder, file, fault.text));
        }
        EXPECT_EQ(findingsIn(examine(folder, expected.empty() ? 0 : 1, more)), expected);
    }
}

/// Replaces a text of a file.
inline Seed replaced(const std::string& file, const std::string& from, const std::string& to)
{
    return [=](const TempFolder& folder) {
        std::string text = fileBytes(folder / file);
        const std::size_t place = text.find(from);
        ASSERT_NE(place, std::string::npos) << file << ": " << from;
        folder.write(file, text.replace(place, from.size(), to));
    };
}

inline Seed removed(const std::string& path)
{
    return [=](const TempFolder& folder) { std::filesystem::remove_all(folder / path); };
}

inline Seed written(const std::string& path, const std::string& text)
{
    return [=](const TempFolder& folder) { folder.write(path, text); };
}

inline Seed moved(const std::string& from, const std::string& to)
{
    return [=](const TempFolder& folder) {
        std::filesystem::create_directories((folder / to).parent_path());
        std::filesystem::rename(folder / from, folder / to);
    };
}

/// One after the other.
inline Seed all(const std::vector<Seed>& seeds)
{
    return [=](const TempFolder& folder) {
        for (const Seed& seed : seeds) {
            seed(folder);
        }
    };
}

} // namespace doctor
