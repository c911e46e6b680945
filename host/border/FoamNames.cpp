// SPDX-License-Identifier: MIT
#include "border/FoamNames.h"

#include "border/TextForms.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <set>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// A time folder and its time.
using TimeFolder = std::pair<double, std::string>;

/// The time of a folder: the number that its name starts with.
std::optional<double> timeOf(const std::string& name)
{
    // A folder may be called "information", which starts with the name of a number.
    if (name.find_first_of("0123456789") > 2) {
        return std::nullopt;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

bool isWholeNumber(const std::string& name)
{
    double value = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), value);
    return error == std::errc() && end == name.data() + name.size();
}

/// Names of the entries of a folder; none if it cannot be read.
std::vector<std::string> entriesOf(const fs::path& folder, bool folders)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code unknown;
        if (entry->is_directory(unknown) == folders) {
            names.push_back(entry->path().filename().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

/// The time folders of a case and of its pieces, in order of time and then of name.
std::vector<TimeFolder> timeFolders(const fs::path& caseFolder)
{
    std::set<TimeFolder> found;
    for (const std::string& name : entriesOf(caseFolder, true)) {
        if (const std::optional<double> time = timeOf(name)) {
            found.emplace(*time, name);
        }
        if (name.starts_with("processor")) {
            for (const std::string& inner : entriesOf(caseFolder / name, true)) {
                if (const std::optional<double> time = timeOf(inner)) {
                    found.emplace(*time, inner);
                }
            }
        }
    }
    return {found.begin(), found.end()};
}

/// The id of a result without the ending that says where its values are.
std::string stemOf(const std::string& key)
{
    for (const char* const ending : {"_E", "_N*", "_N"}) {
        if (key.ends_with(ending)) {
            return key.substr(0, key.size() - std::string(ending).size());
        }
    }
    return key;
}

/// The shown name without the mark that says where its values are.
std::string plainName(const std::string& name)
{
    const std::size_t mark = name.rfind(" [");
    return mark == std::string::npos || !name.ends_with(']') ? name : name.substr(0, mark);
}

/// Adds the fields of the files of one folder, by their ids.
void addFields(const fs::path& folder, std::map<std::string, std::string>* fields)
{
    for (std::string name : entriesOf(folder, false)) {
        if (name.ends_with(".gz")) {
            name.resize(name.size() - 3);
        }
        fields->try_emplace(upperCase(name), name);
    }
}

/// Adds the fields of one time, of all its regions and pieces.
void addFieldsOfTime(const fs::path& caseFolder, const std::string& time, std::map<std::string, std::string>* fields)
{
    std::vector<fs::path> folders = {caseFolder / time};
    for (const std::string& piece : entriesOf(caseFolder, true)) {
        if (piece.starts_with("processor")) {
            folders.push_back(caseFolder / piece / time);
        }
    }
    for (const fs::path& folder : folders) {
        addFields(folder, fields);
        for (const std::string& region : entriesOf(folder, true)) {
            addFields(folder / region, fields);
        }
    }
}

} // namespace

FoamNames::FoamNames(const fs::path& caseFolder, const HostMetaData& metaData)
{
    const std::vector<TimeFolder> folders = timeFolders(caseFolder);
    // States that share a time take the folders of that time in turn. Where there are fewer of them than folders, those
    // that are times to OpenFOAM come first: the library has left out the others.
    std::map<double, std::vector<std::string>> left;
    std::map<double, std::size_t> sharing;
    for (const HostState& state : metaData.states) {
        ++sharing[state.referenceValue];
    }
    for (const auto& [time, name] : folders) {
        left[time].push_back(name);
    }
    for (auto& [time, names] : left) {
        if (sharing[time] < names.size()) {
            std::stable_partition(names.begin(), names.end(), isWholeNumber);
        }
    }
    std::map<double, std::size_t> used;
    for (const HostState& state : metaData.states) {
        const auto found = left.find(state.referenceValue);
        if (found != left.end() && used[state.referenceValue] < found->second.size()) {
            m_folders[state.id] = found->second[used[state.referenceValue]++];
        }
    }
    m_fields = {{"VELOCITY", "U"}, {"PRESSURE", "p"}, {"DENSITY", "rho"}, {"TEMPERATURE", "T"}, {"POINTS", "points"}};
    bool needsFiles = false;
    for (const HostResultInfo& result : metaData.results) {
        const std::string stem = stemOf(result.key);
        const std::string name = plainName(result.name);
        if (!m_fields.contains(stem) && upperCase(name) == upperCase(stem)) {
            m_fields.emplace(stem, name);
        }
        needsFiles = needsFiles || !m_fields.contains(stem);
    }
    // Only where the user has names of his own for fields.
    if (needsFiles && !folders.empty()) {
        addFieldsOfTime(caseFolder, folders.front().second, &m_fields);
        addFieldsOfTime(caseFolder, folders.back().second, &m_fields);
    }
}

std::string FoamNames::folderOf(const HostState& state) const
{
    const auto found = m_folders.find(state.id);
    return found == m_folders.end() ? std::string() : found->second;
}

std::string FoamNames::timeTextOf(const HostState& state) const
{
    const std::string folder = folderOf(state);
    return folder.empty() ? fmt::format("{}", state.referenceValue) : folder;
}

std::string FoamNames::fieldOf(const HostResultInfo& result) const
{
    const std::string stem = stemOf(result.key);
    const auto found = m_fields.find(stem);
    return found == m_fields.end() ? stem : found->second;
}
