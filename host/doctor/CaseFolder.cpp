// SPDX-License-Identifier: MIT
#include "doctor/CaseFolder.h"

#include "doctor/CaseFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

/// No case that a host can show has more entries in one folder.
constexpr std::size_t MOST_ENTRIES = 2'000'000;
/// Surfaces of other formats are told by example, so a few are enough.
constexpr std::size_t MOST_FOREIGN_SURFACES = 10'000;

bool isProcessor(std::string_view name)
{
    constexpr std::string_view STEM = "processor";
    return name.starts_with(STEM) && name.size() > STEM.size() &&
           name.find_first_not_of("0123456789", STEM.size()) == std::string_view::npos;
}

int processorNumber(const std::string& name)
{
    int number = 0;
    (void)std::from_chars(name.data() + std::string_view("processor").size(), name.data() + name.size(), number);
    return number;
}

bool isSetAside(std::string_view name)
{
    static constexpr std::array<std::string_view, 6> ENDINGS = {"~", ".orig", ".bak", ".BAK", ".old", ".save"};
    return name.starts_with('.') ||
           std::ranges::any_of(ENDINGS, [&](std::string_view ending) { return name.ends_with(ending); });
}

std::string_view withoutGz(std::string_view name)
{
    return name.ends_with(".gz") ? name.substr(0, name.size() - 3) : name;
}

/// A path of names, of which those that are empty do not count.
std::string joined(std::initializer_list<std::string_view> names)
{
    std::string path;
    for (const std::string_view name : names) {
        path.append(path.empty() || name.empty() ? "" : "/").append(name);
    }
    return path;
}

/// A whole number of an entry; 0 if it is not one.
std::int64_t wholeNumber(const foamdict::Dictionary& block, std::string_view keyword)
{
    const foamdict::Entry* const entry = block.find(keyword);
    const bool isNumber = entry != nullptr && !entry->tokens.empty() &&
                          entry->tokens.front().kind == foamdict::Token::Kind::Number &&
                          std::abs(entry->tokens.front().number) < 1e15;
    return isNumber ? static_cast<std::int64_t>(entry->tokens.front().number) : 0;
}

std::vector<std::string> groupsOf(const foamdict::Dictionary& block, const std::string& type)
{
    std::vector<std::string> groups;
    if (const foamdict::Entry* const entry = block.find("inGroups")) {
        for (const foamdict::Token& token : entry->tokens) {
            const bool isWord =
                token.kind == foamdict::Token::Kind::Word || token.kind == foamdict::Token::Kind::String;
            if (isWord && !token.text.starts_with("List<")) {
                groups.push_back(token.text);
            }
        }
    }
    if (type == "wall" || isConstraintType(type)) {
        groups.push_back(type);
    }
    if (type.starts_with("mapped")) {
        groups.emplace_back("mappedPatch");
        if (type.find("Wall") != std::string::npos) {
            groups.emplace_back("wall");
        }
    }
    return groups;
}

/// The blocks of a file that is a list of them.
const std::vector<foamdict::Entry>& blocksOf(const CaseFile& file)
{
    return file.content.items ? file.content.items->entries() : file.content.entries.entries();
}

/// How many labels an entry of a zone has: "List<label> 2 (0 1)", "(0 1)", "0"; 0 too if there is none.
std::size_t labelCount(const foamdict::Dictionary& block, std::string_view keyword)
{
    using foamdict::Token;
    const foamdict::Entry* const entry = block.find(keyword);
    if (entry == nullptr) {
        return 0;
    }
    const auto isCount = [](const Token& token) {
        return (token.kind == Token::Kind::List || token.kind == Token::Kind::Number) && token.number >= 0;
    };
    const auto bracket = std::ranges::find(entry->tokens, Token::Kind::Punctuation, &Token::kind);
    const auto count = std::find_if(entry->tokens.begin(), bracket, isCount);
    return count != bracket ? static_cast<std::size_t>(count->number)
                            : static_cast<std::size_t>(std::count_if(bracket, entry->tokens.end(), isCount));
}

/// The number after "nCells:" in the note of `owner`.
std::optional<std::size_t> cellsOfNote(const std::string& note)
{
    constexpr std::string_view KEY = "nCells:";
    std::size_t place = note.find(KEY);
    if (place == std::string::npos) {
        return std::nullopt;
    }
    place = note.find_first_not_of(' ', place + KEY.size());
    std::size_t cells = 0;
    const char* const end = note.data() + note.size();
    const bool isNumber =
        place != std::string::npos && std::from_chars(note.data() + place, end, cells).ec == std::errc();
    return isNumber ? std::optional(cells) : std::nullopt;
}

} // namespace

std::optional<double> timeOfName(std::string_view name)
{
    if (name.starts_with('+')) {
        name.remove_prefix(1);
    }
    double value = 0;
    const char* const end = name.data() + name.size();
    const auto [last, error] = std::from_chars(name.data(), end, value);
    const bool isTime = error == std::errc() && last == end && name.find_first_of("ni") == std::string_view::npos;
    return isTime ? std::optional(value) : std::nullopt;
}

bool isConstraintType(std::string_view type)
{
    static constexpr std::array<std::string_view, 12> TYPES = {
        "empty",      "wedge",      "symmetry",  "symmetryPlane",   "cyclic",  "cyclicAMI",
        "cyclicACMI", "cyclicSlip", "processor", "processorCyclic", "overset", "nonuniformTransformCyclic"};
    return std::ranges::find(TYPES, type) != TYPES.end();
}

CaseFolder::CaseFolder(fs::path root) : m_root(std::move(root))
{
    for (const std::string& name : foldersIn("")) {
        if (isProcessor(name)) {
            m_processors.push_back(name);
        } else if (name.starts_with("processors")) {
            m_collated.push_back(name);
        }
    }
    std::ranges::stable_sort(m_processors, {}, processorNumber);
    findTimes();
    findMeshes();
    findSurfaces();
}

const CaseFolder::Listing& CaseFolder::list(const std::string& folder) const
{
    const auto [place, isNew] = m_listings.try_emplace(folder);
    if (!isNew) {
        return place->second;
    }
    const fs::path path = folder.empty() ? m_root : m_root / folder;
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        return place->second;
    }
    fs::directory_iterator entry(path, error);
    for (std::size_t i = 0; !error && entry != fs::directory_iterator() && i < MOST_ENTRIES; ++i) {
        std::error_code ofEntry;
        const std::string name = entry->path().filename().string();
        if (entry->is_directory(ofEntry)) {
            place->second.folders.push_back(name);
        } else if (entry->is_regular_file(ofEntry)) {
            place->second.files.push_back(name);
        }
        entry.increment(error);
    }
    if (error) {
        m_unreadable.push_back({folder.empty() ? "." : folder, error.message()});
    }
    std::ranges::sort(place->second.folders);
    std::ranges::sort(place->second.files);
    return place->second;
}

std::vector<std::string> CaseFolder::foldersIn(const std::string& folder) const
{
    return list(folder).folders;
}

std::set<std::string> CaseFolder::filesIn(const std::string& folder) const
{
    std::set<std::string> names;
    for (const std::string& file : list(folder).files) {
        if (const std::string_view name = withoutGz(file); !isSetAside(name)) {
            names.emplace(name);
        }
    }
    return names;
}

bool CaseFolder::hasFile(const std::string& path) const
{
    std::error_code error;
    return fs::is_regular_file(m_root / path, error) || fs::is_regular_file(m_root / (path + ".gz"), error);
}

bool CaseFolder::hasFolder(const std::string& path) const
{
    std::error_code error;
    return fs::is_directory(m_root / path, error);
}

std::uintmax_t CaseFolder::sizeOf(const std::string& path) const
{
    std::error_code error;
    for (const std::string& file : {path, path + ".gz"}) {
        if (fs::is_regular_file(m_root / file, error)) {
            return fs::file_size(m_root / file, error);
        }
    }
    return 0;
}

void CaseFolder::findTimes()
{
    std::set<std::string> names;
    for (const std::string& name : foldersIn("")) {
        if (timeOfName(name)) {
            names.insert(name);
        } else if (!name.empty() && name.front() >= '0' && name.front() <= '9') {
            m_almostTimes.push_back(name);
        }
    }
    for (const std::string& processor : m_processors) {
        for (const std::string& name : foldersIn(processor)) {
            if (timeOfName(name)) {
                names.insert(name);
            }
        }
    }
    for (const std::string& name : names) {
        m_times.push_back({*timeOfName(name), name});
    }
    std::ranges::stable_sort(m_times, {}, &CaseTime::value);
}

bool CaseFolder::isWholeMesh(const std::string& folder) const
{
    return hasFile(folder + "/faces") && hasFile(folder + "/points") && hasFile(folder + "/owner");
}

/// The mesh that solvers start with: one in the first time folder comes before that in `constant`.
std::string CaseFolder::firstMesh(const std::string& region) const
{
    std::vector<CaseTime> present = m_times;
    std::erase_if(present, [&](const CaseTime& time) { return !hasFolder(time.name); });
    if (!present.empty()) {
        std::string mesh = joined({present.front().name, region, "polyMesh"});
        if (isWholeMesh(mesh)) {
            return mesh;
        }
    }
    return joined({"constant", region, "polyMesh"});
}

void CaseFolder::findMeshes()
{
    for (const std::string& processor : m_processors) {
        findPieces(processor);
    }
    const bool hasPieces = !m_meshes.empty();
    const auto addWhole = [&](const std::string& region) {
        CaseMesh mesh;
        mesh.part = region.empty() ? "default_region" : region;
        mesh.region = region;
        mesh.folder = firstMesh(region);
        mesh.isBesidePieces = hasPieces;
        addMesh(std::move(mesh));
    };
    if (hasFolder("constant/polyMesh") || isWholeMesh(firstMesh(""))) {
        addWhole("");
    }
    for (const std::string& region : foldersIn("constant")) {
        if (region != "polyMesh" && hasFolder(joined({"constant", region, "polyMesh"}))) {
            addWhole(region);
        }
    }
}

void CaseFolder::findPieces(const std::string& processor)
{
    std::vector<std::string> candidates;
    for (const std::string& name : foldersIn(processor)) {
        if (timeOfName(name)) {
            candidates.push_back(name);
        }
    }
    std::ranges::sort(candidates, {}, [](const std::string& name) { return *timeOfName(name); });
    const bool isInFirst = !candidates.empty() && isWholeMesh(processor + "/" + candidates.front() + "/polyMesh");
    candidates.insert(candidates.begin() + (isInFirst ? 1 : 0), "constant");
    for (const std::string& name : candidates) {
        if (hasFolder(joined({processor, name, "polyMesh"}))) {
            CaseMesh mesh;
            mesh.part = mesh.processor = processor;
            mesh.folder = joined({processor, name, "polyMesh"});
            addMesh(std::move(mesh));
            break;
        }
    }
    for (const std::string& region : foldersIn(processor + "/constant")) {
        const std::string folder = joined({processor, "constant", region, "polyMesh"});
        if (region != "polyMesh" && hasFolder(folder)) {
            CaseMesh mesh;
            mesh.part = joined({processor, region});
            mesh.processor = processor;
            mesh.region = region;
            mesh.folder = folder;
            addMesh(std::move(mesh));
        }
    }
}

void CaseFolder::addMesh(CaseMesh mesh)
{
    const CaseFile boundary = readCaseFile(m_root / mesh.folder / "boundary", m_root, false);
    for (const foamdict::Entry& entry : blocksOf(boundary)) {
        if (entry.block == nullptr) {
            continue;
        }
        CasePatch patch;
        patch.name = entry.keyword;
        patch.type = firstWordOf(*entry.block, "type");
        patch.groups = groupsOf(*entry.block, patch.type);
        patch.faces = wholeNumber(*entry.block, "nFaces");
        patch.line = entry.line;
        mesh.patches.push_back(std::move(patch));
    }
    const CaseFile cellZones = readCaseFile(m_root / mesh.folder / "cellZones", m_root, false);
    for (const foamdict::Entry& entry : blocksOf(cellZones)) {
        mesh.cellZones += entry.block != nullptr && labelCount(*entry.block, "cellLabels") > 0 ? 1 : 0;
    }
    const CaseFile faceZones = readCaseFile(m_root / mesh.folder / "faceZones", m_root, false);
    for (const foamdict::Entry& entry : blocksOf(faceZones)) {
        mesh.faceZones += entry.block != nullptr ? 1 : 0;
    }
    mesh.cells = cellsOfNote(readCaseFile(m_root / mesh.folder / "owner", m_root, true).header("note"));
    m_meshes.push_back(std::move(mesh));
}

void CaseFolder::findSurfaces()
{
    for (const std::string& function : foldersIn("postProcessing")) {
        findSurfacesOf(function);
        for (const std::string& region : foldersIn(joined({"postProcessing", function}))) {
            if (!timeOfName(region)) {
                findSurfacesOf(joined({function, region}));
            }
        }
    }
}

void CaseFolder::findSurfacesOf(const std::string& function)
{
    static constexpr std::array<std::string_view, 6> FORMATS = {".vtk", ".vtp", ".stl", ".obj", ".ply", ".case"};
    const std::string root = "postProcessing/" + function;
    std::vector<std::string> times = foldersIn(root);
    std::erase_if(times, [](const std::string& name) { return !timeOfName(name); });
    std::ranges::stable_sort(times, {}, [](const std::string& name) { return *timeOfName(name); });
    for (const std::string& time : times) {
        for (const std::string& name : foldersIn(joined({root, time}))) {
            const std::string folder = joined({root, time, name});
            if (hasFile(folder + "/points") && hasFile(folder + "/faces")) {
                const bool isDefault = function == "sampleSurface";
                m_surfaces.push_back({joined({isDefault ? std::string_view() : function, name}).append("[Surf]"), time,
                                      folder, isDefault});
            }
        }
        for (const std::string& file : list(joined({root, time})).files) {
            const bool isSurface = std::ranges::any_of(
                FORMATS, [&](std::string_view format) { return withoutGz(file).ends_with(format); });
            if (isSurface && m_foreignSurfaces.size() < MOST_FOREIGN_SURFACES) {
                m_foreignSurfaces.push_back(joined({root, time, file}));
            }
        }
    }
}

std::vector<std::string> CaseFolder::fieldFolders(const CaseMesh& mesh, const std::string& time) const
{
    std::vector<std::string> folders;
    if (mesh.processor.empty()) {
        folders = {joined({time, mesh.region})};
    } else {
        folders = {joined({time, mesh.processor, mesh.region}), joined({mesh.processor, time, mesh.region})};
    }
    std::erase_if(folders, [&](const std::string& folder) { return !hasFolder(folder); });
    return folders;
}
