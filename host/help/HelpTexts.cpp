// SPDX-License-Identifier: MIT
#include "help/HelpTexts.h"

#include <map>
#include <sstream>

const std::vector<ExitCodeText>& exitCodeTexts()
{
    static const std::vector<ExitCodeText> texts = {
        {"0", "success", "everything was done, and nothing wrong was found"},
        {"1", "findings",
         "everything was done, but something could not be read, a value is NaN or infinite, or a "
         "check failed"},
        {"2", "usage", "the command line makes no sense, or names a file that must not be replaced"},
        {"3", "case refused", "the library does not open the case, or does not have what was asked for"},
        {"4", "library not loadable", "there is no library, or it is not one that this program can load"},
        {"5", "library misbehaved", "the library crashed, threw an exception or delivered broken data"},
        {"6", "cannot write output", "a file cannot be written, or a picture cannot be drawn"},
        {"130", "interrupted (143 by SIGTERM)", "128 plus the number of the signal"}};
    return texts;
}

const std::vector<HelpEntry>& environmentTexts()
{
    static const std::vector<HelpEntry> texts = {
        {"DDP_PLUGIN", "The library to load, unless --plugin names one"},
        {"OPENFOAM_PLUGIN_EXTENDED_READING",
         "1 or true makes the library read cases as OpenFOAM would, unless the setting EXTENDED_READING is passed"},
        {"NO_COLOR", "If not empty, text is not coloured unless --color asks for it"}};
    return texts;
}

const std::vector<HelpEntry>& fileTexts()
{
    static const std::vector<HelpEntry> texts = {
        {"libOpenFoamPlugin.so", "The library, searched for next to the program and in the library folder of the same "
                                 "installation, unless --plugin or the variable DDP_PLUGIN names another"}};
    return texts;
}

std::vector<HelpEntry> exampleTexts(const std::string& command)
{
    static const std::map<std::string, std::vector<HelpEntry>> texts = {
        {"ddphost",
         {{"ddphost info motorBike", "What the case in the folder motorBike holds"},
          {"ddphost doctor motorBike", "What of it a host will not show, and why"}}},
        {"info",
         {{"ddphost info --counts motorBike", "Read the meshes too and count nodes and cells"},
          {"ddphost info --json motorBike | jq '.results[].field'", "The names of the fields"}}},
        {"stats",
         {{"ddphost stats motorBike --result U --state all", "The range of the velocity in every state"},
          {"ddphost stats motorBike --part inlet --csv >inlet.csv", "A table of what there is on one patch"}}},
        {"export",
         {{"ddphost export motorBike -o vtk", "The meshes of cells, patches and zones"},
          {"ddphost export motorBike -o vtk --state 100:500 --result 'p|U'", "With two results of some states"}}},
        {"watch", {{"ddphost watch motorBike --interval 10", "Follow a solver that is running"}}},
        {"bench", {{"ddphost bench motorBike --repeat 5", "Medians of five runs"}}},
        {"sample",
         {{"ddphost sample box --cells 1e6 --binary", "A million hexahedra"},
          {"ddphost sample duct --kind decomposed", "A case in the pieces of a parallel run"}}},
        {"check",
         {{"ddphost check", "Check the library on built-in samples"},
          {"ddphost check motorBike --include ^geometry", "Check only the meshes of one case"}}},
        {"doctor",
         {{"ddphost doctor", "Whether a host could load the library"},
          {"ddphost doctor motorBike --state all", "Look at every state of a case"}}},
        {"view", {{"ddphost view motorBike", "Write a page to look at in a browser"}}}};
    const auto found = texts.find(command);
    return found == texts.end() ? std::vector<HelpEntry>() : found->second;
}

std::string wrapped(const std::string& text, std::size_t width)
{
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::size_t column = 0;
        for (std::string word; words >> word;) {
            const bool fits = column == 0 || column + 1 + word.size() <= width;
            result += (column == 0 ? "" : fits ? " " : "\n") + word;
            column = (fits && column != 0 ? column + 1 : 0) + word.size();
        }
        result += '\n';
    }
    return result;
}
