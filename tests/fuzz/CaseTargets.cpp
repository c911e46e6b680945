// SPDX-License-Identifier: MIT
//
// A whole case: an archive of files, opened through the provider and read as a host does.
#include "border/DeliveryCheck.h"
#include "border/HostNotifications.h"
#include "border/HostOptions.h"
#include "fuzz/FuzzHarness.h"
#include "mesh/OFPolymeshReader.h"
#include "provider/OpenFoamProvider.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

namespace {

/// The path and text of each file. In an archive each file follows a line with "@" and its path.
using Archive = std::vector<std::pair<std::string, std::string>>;

/// A polyhedron with more face nodes than a byte can count takes more text than this. Its tables are cut, which the
/// checks would report.
constexpr std::size_t LARGEST_CHECKED = 450;

/// Nothing may be written outside the case.
bool isGoodPath(std::string_view path)
{
    const auto isGood = [](char c) {
        return std::string_view("/.-_").find(c) != std::string_view::npos || std::isalnum(c);
    };
    return path.size() < 80 && path.find("..") == std::string_view::npos && std::ranges::all_of(path, isGood);
}

/// The name of a field loses everything from its last dot on, so ".gz" after a name with a dot changes the name.
bool isSameWithGz(const std::pair<std::string, std::string>& entry)
{
    return entry.first.find('.', entry.first.rfind('/') + 1) == std::string::npos;
}

Archive archiveFrom(std::string_view text)
{
    Archive archive;
    while (!text.empty()) {
        const std::size_t next = std::min(text.find("\n@", 1), text.size());
        std::string_view entry = text.substr(0, next);
        entry.remove_prefix(std::min<std::size_t>(text.front() == '@' ? 1 : 2, next));
        text.remove_prefix(next);
        const std::size_t lineEnd = std::min(entry.find('\n'), entry.size());
        if (isGoodPath(entry.substr(0, lineEnd))) {
            archive.emplace_back(entry.substr(0, lineEnd), expanded(entry.substr(lineEnd), 1));
        }
    }
    return archive;
}

/// Writes what can be written: one path may need a folder where another has a file. OpenFOAM never compresses
/// `uniform/time`, and the library looks for it only under its plain name.
void write(const Archive& archive, bool isZipped, const TempFolder& folder)
{
    std::filesystem::create_directories(folder.path() / "case/constant");
    for (const auto& [path, text] : archive) {
        const bool isPacked = isZipped && !path.ends_with("uniform/time");
        try {
            folder.write("case/" + path + (isPacked ? ".gz" : ""), isPacked ? gzipped(text) : text);
        } catch (const std::exception&) {
            continue;
        }
    }
}

void addGeometry(const HostGeometry& geometry, Outcome* outcome)
{
    for (const HostNodeGroup& nodes : geometry.nodeGroups) {
        outcome->add(nodes.coordinates, nodes.ids);
    }
    for (const HostElementGroup& elements : geometry.elementGroups) {
        const HostPolyhedra& tables = elements.polyhedra;
        outcome->add(elements.types, elements.connectivity, elements.ids, elements.partIds, tables.nodesPerPolyhedron,
                     tables.facesPerPolyhedron, tables.nodesPerFace, tables.faceConnectivity);
    }
}

void addPoll(OpenFoamProvider* provider, Outcome* outcome)
{
    HostNotifications notifications;
    tolerate(outcome, [&] { provider->pollForChanges(&notifications); });
    for (const HostNotice& notice : notifications.notices) {
        outcome->add(notice.kind, notice.id, notice.name, notice.referenceValue);
    }
}

/// Makes all requests of a host, in its order. A host continues after a documented exception.
void askForAll(const std::filesystem::path& folder, const HostOptions& options, bool isChecked, Outcome* outcome)
{
    OpenFoamProvider provider;
    HostMetaData metaData;
    HostGeometry geometry;
    bool isGood = false;
    tolerate(outcome,
             [&] { isGood = provider.init(DDPString((folder / "case.foam").c_str()), options, nullptr) != 0; });
    if (!isGood || !tolerate(outcome, [&] { provider.getMetaData(&metaData); })) {
        return;
    }
    // Results are in the order in which the file system lists the folder.
    std::vector<const HostResultInfo*> results;
    std::transform(metaData.results.begin(), metaData.results.end(), std::back_inserter(results),
                   [](const HostResultInfo& info) { return &info; });
    std::ranges::stable_sort(results, {}, &HostResultInfo::key);
    std::erase_if(metaData.calls, [](const std::string& call) { return call.starts_with("addResult"); });
    outcome->add(metaData.title, metaData.description, metaData.calls);
    isChecked = tolerate(outcome, [&] { provider.getGeometry(HostGeometrySpec(), &geometry); }) && isChecked;
    if (isChecked) {
        checkGeometry(metaData, geometry);
    }
    addGeometry(geometry, outcome);
    for (const HostResultInfo* const info : results) {
        outcome->add(info->name, info->key, info->unit, info->kind, info->mapping, info->displacementFlag);
        for (const HostState& state : metaData.states) {
            if (!belongsToItsGroups(metaData, *info, state.id)) {
                continue;
            }
            HostResult result;
            bool isDelivered = false;
            isGood = tolerate(outcome,
                              [&] { isDelivered = provider.getResult(HostResultSpec(info->id, state.id), &result); });
            if (isChecked && isGood && isDelivered) {
                checkResult(metaData, geometry, *info, result);
            }
            for (const HostValueGroup& group : result.groups) {
                outcome->add(group.dimension, group.values);
            }
        }
    }
    // One time appears and one disappears; the poll after that announces all states again.
    std::error_code error;
    const std::filesystem::path away = folder.parent_path() / "away";
    std::filesystem::create_directory(folder / "77.5", error);
    std::filesystem::rename(folder / "1", away, error);
    addPoll(&provider, outcome);
    addPoll(&provider, outcome);
    std::filesystem::remove(folder / "77.5", error);
    std::filesystem::rename(away, folder / "1", error);
    addPoll(&provider, outcome);
    provider.close();
    BorderFaults::get().throwIfAny("the provider");
}

/// If the sequential mesh reader succeeds, the parallel one must read the same.
void compareReaders(const std::filesystem::path& folder)
{
    const dvn::Str meshFolder((folder / "constant/polyMesh").string());
    std::array<OFPolymesh, 2> meshes;
    std::array<Outcome, 2> outcomes;
    bool isRead = false;
    tolerate(&outcomes[0], [&] { isRead = OFPolymeshReader().readPolymeshSeq(meshFolder, &meshes[0]); });
    for (std::size_t i = 0; i < (isRead ? meshes.size() : 0); ++i) {
        const OFPolymesh& mesh = meshes[i];
        static_cast<void>(i == 1 && OFPolymeshReader().read(meshFolder, &meshes[i]));
        outcomes[i].add(mesh.points(), mesh.owners(), mesh.neighbors(), mesh.cellCount(), mesh.faces().nodes);
    }
    expectEqual(outcomes[0], outcomes[isRead ? 1 : 0], "a mesh depends on the order in which its files are read");
}

void runCase(FuzzInput input)
{
    static constexpr std::array<const char*, 8> SWITCHES = {
        "LOAD_BC_PARTS",     "LOAD_CELL_ZONES", "LOAD_FACE_ZONES",          "LOAD_GLOBAL_MESH",
        "LOAD_LOCAL_MESHES", "NODE_AVG_RES",    "HIDE_PARALLEL_INTERFACES", "EXTENDED_READING"};
    const TempFolder folder;
    const std::filesystem::path caseFolder = folder.path() / "case";
    const std::uint8_t flags = input.byte();
    const std::uint8_t settings = input.byte();
    HostOptions options;
    for (std::size_t i = 0; i < SWITCHES.size(); ++i) {
        options.setBool(SWITCHES[i], (settings >> i & 1) != 0);
    }
    const Archive archive = archiveFrom(input.rest());
    const bool isChecked = std::all_of(archive.begin(), archive.end(), [](const auto& entry) {
        return !entry.first.ends_with("faces") || entry.second.size() < LARGEST_CHECKED;
    });
    const auto ask = [&](Outcome* outcome) { askForAll(caseFolder, options, isChecked, outcome); };
    write(archive, false, folder);
    const Outcome plain = observe(1, ask);
    if (plain.isDoubtful) {
        return;
    }
    if (flags % 4 == 1) {
        expectEqual(plain, observe(8, ask), "a case depends on the number of threads");
    } else if (flags % 4 == 2 && std::ranges::all_of(archive, isSameWithGz)) {
        std::filesystem::remove_all(caseFolder);
        write(archive, true, folder);
        const Outcome zipped = observe(1, ask);
        if (!zipped.isDoubtful) {
            expectEqual(plain, zipped, "a case depends on gzip");
        }
    } else if (flags % 4 == 3) {
        observe(8, [&caseFolder](Outcome* /*outcome*/) { compareReaders(caseFolder); });
    }
}

} // namespace

std::vector<FuzzTarget> caseTargets()
{
    return {{"case", runCase}};
}
