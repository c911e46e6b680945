// SPDX-License-Identifier: MIT
#pragma once

#include "support/TempFolder.h"

#include <cstdlib>
#include <string>

#include <sys/wait.h>

/// The result of one run of the program.
struct ProgramRun
{
    int code;
    std::string out;
    std::string err;
};

inline std::string inQuotes(const std::filesystem::path& path)
{
    return " '" + path.string() + "'";
}

/// Runs the program with the real plug-in or the one that the arguments name. `redirection` overrides ours.
inline ProgramRun runProgram(const TempFolder& folder, const std::string& arguments,
                             const std::string& environment = "", const std::string& redirection = "")
{
    const std::string command = "DDP_PLUGIN='" REAL_PLUGIN "' " + environment + " '" DDPHOST_PROGRAM "' " + arguments +
                                " >" + inQuotes(folder / "out") + " 2>" + inQuotes(folder / "err") + " " + redirection;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileBytes(folder / "out"), fileBytes(folder / "err")};
}
