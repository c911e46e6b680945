// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "border/EscapedText.h"
#include "border/TextForms.h"
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/Selection.h"
#include "output/ByteText.h"
#include "output/ExportFolder.h"
#include "output/FileNames.h"
#include "output/Interrupt.h"
#include "output/ProgressBar.h"
#include "output/VtkWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include <signal.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* PART_ID_ARRAY = "PartId";

struct ExportOptions
{
    std::string casePath;
    std::string folder;
    std::string part;
    std::string state;
    std::string result;
    bool overwrite = false;
    bool ascii = false;
};

/// One exported group, and the name of its file in the folder of each state.
struct ExportedGroup
{
    const HostGroup* group;
    std::size_t index; ///< of its element group
    bool surface;
    std::string fileName;
};

/// One set of files with its index: for one state, or for the geometry only.
struct ExportedState
{
    std::string stem; ///< name of the index without its extension, and of the data folder before it gets a number
    const HostState* state;
};

/// One exported result and its name in the files.
struct ExportedResult
{
    const HostResultInfo* info;
    std::string field; ///< the field in the files of the case
    std::string unit;
    std::string arrayName; ///< differs from that of every other array
};

/// A file that was written, by its path in the folder.
struct WrittenFile
{
    std::string path;
    std::uint64_t byteCount;
};

/// The results of one state in the order of the selection; null if the library has none, or has only values of other
/// parts.
using StateResults = std::vector<std::unique_ptr<HostResult>>;

/// Bytes of the arrays that a group takes in a file, if the state has values of all results for it.
std::uint64_t expectedBytes(const HostNodeGroup& nodes, const HostElementGroup& elements,
                            const std::vector<ExportedResult>& results)
{
    constexpr std::uint64_t NUMBER = 8;
    const HostPolyhedra& tables = elements.polyhedra;
    std::uint64_t numbers = 3 * nodes.nodeCount() + elements.connectivity.size() + 2 * elements.elementCount() +
                            tables.nodesPerFace.size() + tables.faceConnectivity.size();
    for (const ExportedResult& result : results) {
        const auto components = static_cast<std::uint64_t>(componentCount(result.info->kind));
        numbers += components * (result.info->mapping == MAPPING_NODE ? nodes.nodeCount() : elements.elementCount());
    }
    return numbers * NUMBER;
}

/// One result as an array for viewers.
VtkArray makeArray(const ExportedResult& result, const HostValueGroup& values)
{
    VtkArray array = {result.arrayName, values.dimension, values.values, result.unit};
    // Viewers have no undefined value; they leave NaN blank.
    std::ranges::replace(array.values, UNDEFINED_VALUE, std::numeric_limits<double>::quiet_NaN());
    return array;
}

/// One run of the command.
class Exporter
{
public:
    Exporter(HostContext& context, const ExportOptions& options)
        : m_context(context), m_options(options), m_opened(context.open(options.casePath)),
          m_metaData(m_opened->metaData())
    {}

    ExitCode run()
    {
        // Without a handler a file that grows past the limit of the process ends it before anything can be told.
        static_cast<void>(signal(SIGXFSZ, SIG_IGN));
        selectWhatToWrite();
        ExportFolder folder(m_options.folder, layout(), m_options.overwrite);
        m_folder = &folder;
        const std::vector<LoggedCause> unread = unreadMeshes(*m_opened);
        m_geometry = &m_opened->geometry();
        writeStates();
        std::vector<std::string> paths;
        std::ranges::transform(m_written, std::back_inserter(paths), &WrittenFile::path);
        folder.commit(paths);
        const ExitCode code = unread.empty() ? ExitCode::Good : ExitCode::Findings;
        interruptsEndWith(static_cast<int>(code));
        report(unread);
        tellUnreadMeshes(unread);
        if (m_hasUndefined && !m_context.options.quiet) {
            tellUser("some values are undefined, which are nan in the files; " + doctorHint(m_options.casePath));
        }
        return code;
    }

private:
    /// Determines groups, states and all file names before anything is read or written for them.
    void selectWhatToWrite()
    {
        const std::vector<const HostGroup*> declared = m_metaData.geometryGroups();
        FileNames names;
        for (const std::size_t index : selectGroups(*m_opened, m_options.part)) {
            const HostGroup* const group = declared[index];
            const bool surface = group->kind() != HostGroupKind::Part;
            m_groups.push_back({group, index, surface, names.unique(qualifiedName(*group), surface ? ".vtp" : ".vtu")});
        }
        if (m_options.state.empty() && m_options.result.empty()) {
            m_states.push_back({"case", nullptr});
            return;
        }
        selectResultsToWrite();
        const std::string states = m_options.state.empty() ? "latest" : m_options.state;
        for (const HostState* const state : selectStates(*m_opened, states)) {
            m_states.push_back({fmt::format("case_{:04}", m_states.size()), state});
        }
        if (m_states.empty()) {
            throw HostError(ExitCode::Findings, "the case has no states to export");
        }
    }

    /// A viewer keeps only the last of several arrays of one name, so a name that is taken gets the field added.
    void selectResultsToWrite()
    {
        std::set<std::string> taken = {PART_ID_ARRAY};
        for (const HostResultInfo* const info : selectResults(*m_opened, m_options.result)) {
            const std::string field = m_opened->names().fieldOf(*info);
            std::string name = info->name;
            for (int number = 1; !taken.insert(name).second; ++number) {
                name = number == 1 ? fmt::format("{} ({})", info->name, field)
                                   : fmt::format("{} ({}, {})", info->name, field, number);
            }
            m_results.push_back({info, field, withoutTrailingBlanks(info->unit), name});
        }
    }

    /// Patches of different parts may have the same name, so the name of the part is prepended.
    std::string qualifiedName(const HostGroup& group) const
    {
        const HostGroup* const parent = group.parentId ? m_metaData.findGroup(*group.parentId) : nullptr;
        return parent == nullptr ? group.name : parent->name + "." + group.name;
    }

    static std::string indexName(const ExportedState& state) { return state.stem + ".vtm"; }
    bool hasSeries() const { return m_states.front().state != nullptr; }

    ExportLayout layout() const
    {
        ExportLayout names;
        for (const ExportedState& state : m_states) {
            names.dataFolders.push_back(state.stem);
            names.indexes.push_back(indexName(state));
        }
        if (hasSeries()) {
            names.indexes.emplace_back("case.vtm.series");
        }
        return names;
    }

    void writeStates()
    {
        std::uint64_t total = 0;
        for (const ExportedGroup& group : m_groups) {
            total += m_states.size() * expectedBytesOf(group);
        }
        ProgressBar progress(m_context.showsProgress(), "export", "", total);
        for (std::size_t i = 0; i < m_states.size(); ++i) {
            writeState(i, &progress);
        }
        // The indexes follow in the order in which they become visible.
        for (std::size_t i = 0; i < m_states.size(); ++i) {
            const std::string name = indexName(m_states[i]);
            m_written.push_back({name, writeVtm(m_folder->temporaryPath(name), indexEntries(i))});
        }
        if (hasSeries()) {
            writeSeriesIndex();
        }
    }

    std::uint64_t expectedBytesOf(const ExportedGroup& group) const
    {
        const HostElementGroup& elements = m_geometry->elementGroups[group.index];
        return expectedBytes(*m_geometry->nodesOf(elements), elements, m_results);
    }

    void writeState(std::size_t position, ProgressBar* progress)
    {
        const StateResults results = readResults(m_states[position]);
        m_folder->makeDataFolder(position);
        for (const ExportedGroup& group : m_groups) {
            const std::uint64_t expected = expectedBytesOf(group);
            std::uint64_t done = 0;
            VtkFormat format;
            format.ascii = m_options.ascii;
            format.progress = [&](std::size_t byteCount) {
                const std::uint64_t bytes = std::min<std::uint64_t>(byteCount, expected - done);
                progress->advance(bytes);
                done += bytes;
            };
            const std::string path = m_folder->dataFolder(position) + "/" + group.fileName;
            const VtkGrid grid = makeGrid(m_states[position], group, results);
            const auto write = group.surface ? writeVtp : writeVtu;
            m_written.push_back({path, write(m_folder->temporaryPath(path), grid, format)});
            progress->advance(expected - done);
        }
    }

    /// Reads all results of a state before writing the first group, because a result delivers all groups at once.
    StateResults readResults(const ExportedState& state)
    {
        StateResults results;
        for (const ExportedResult& result : m_results) {
            const bool isOwn = belongsToItsGroups(m_metaData, *result.info, state.state->id);
            results.push_back(isOwn ? m_opened->result(*result.info, state.state->id) : nullptr);
        }
        return results;
    }

    /// The grid is rebuilt for each state, which costs less than keeping the grids of all groups.
    VtkGrid makeGrid(const ExportedState& state, const ExportedGroup& group, const StateResults& results)
    {
        const HostElementGroup& elements = m_geometry->elementGroups[group.index];
        const HostNodeGroup& nodes = *m_geometry->nodesOf(elements);
        VtkGrid grid = makeVtkGrid(nodes, elements, group.surface, group.group->id);
        for (std::size_t k = 0; k < results.size(); ++k) {
            const HostValueGroup* const values =
                results[k] == nullptr ? nullptr : valuesOfGroup(m_metaData, *results[k], group.index);
            if (values != nullptr && values->itemCount() != 0) {
                addValues(m_results[k], *values, &grid);
            }
        }
        if (state.state != nullptr) {
            grid.time = state.state->referenceValue;
        }
        nameGroups(&grid);
        nameResults(&grid);
        return grid;
    }

    void addValues(const ExportedResult& result, const HostValueGroup& values, VtkGrid* grid)
    {
        // Displacements are the positions of the nodes in the state, so they take the place of the points.
        if (result.info->kind == KIND_DISPLACEMENT) {
            if (values.canReplacePoints(grid->points->size() / 3)) {
                grid->points = &values.values;
            }
            return;
        }
        auto& arrays = result.info->mapping == MAPPING_NODE ? grid->pointData : grid->cellData;
        m_hasUndefined = m_hasUndefined || std::ranges::find(values.values, UNDEFINED_VALUE) != values.values.end();
        arrays.push_back(makeArray(result, values));
    }

    /// Names the ids in the array of part ids, which is all that distinguishes the cells of a cell zone.
    void nameGroups(VtkGrid* grid) const
    {
        const std::set<std::int32_t> present(grid->partIds.begin(), grid->partIds.end());
        VtkTexts names = {"GroupName", {}};
        for (const std::int32_t id : present) {
            if (const HostGroup* const group = m_metaData.findGroup(id)) {
                grid->groupIds.push_back(id);
                names.values.push_back(group->name);
            }
        }
        grid->texts.push_back(std::move(names));
    }

    /// Array names are the shown ones, so the fields and units stand beside them.
    void nameResults(VtkGrid* grid) const
    {
        std::set<std::string> present;
        for (const std::vector<VtkArray>* const arrays : {&grid->cellData, &grid->pointData}) {
            std::ranges::transform(*arrays, std::inserter(present, present.end()), &VtkArray::name);
        }
        VtkTexts names = {"ResultName", {}};
        VtkTexts fields = {"ResultField", {}};
        VtkTexts units = {"ResultUnit", {}};
        for (const ExportedResult& result : m_results) {
            if (present.contains(result.arrayName)) {
                names.values.push_back(result.arrayName);
                fields.values.push_back(result.field);
                units.values.push_back(result.unit);
            }
        }
        if (!present.empty()) {
            grid->texts.insert(grid->texts.end(), {names, fields, units});
        }
    }

    /// A block for each part with its cells and surfaces; groups without a part are at the same level as these blocks.
    std::vector<VtkIndexEntry> indexEntries(std::size_t position) const
    {
        std::vector<VtkIndexEntry> entries;
        std::map<std::int32_t, std::size_t> blockOfPart;
        for (const ExportedGroup& exported : m_groups) {
            const HostGroup& group = *exported.group;
            const VtkIndexEntry entry = {group.name, m_folder->dataFolder(position) + "/" + exported.fileName, {}};
            if (group.kind() == HostGroupKind::Surface) {
                entries.push_back(entry);
                continue;
            }
            const std::int32_t partId = group.parentId.value_or(group.id);
            const auto [block, added] = blockOfPart.try_emplace(partId, entries.size());
            if (added) {
                const HostGroup* const part = m_metaData.findGroup(partId);
                entries.push_back({part == nullptr ? group.name : part->name, {}, {}});
            }
            entries[block->second].children.push_back(entry);
        }
        return entries;
    }

    /// The times come from the states, so that an animation runs in simulation time.
    void writeSeriesIndex()
    {
        std::vector<VtkSeriesEntry> entries;
        for (const ExportedState& state : m_states) {
            entries.push_back({indexName(state), state.state->referenceValue});
        }
        const std::string name = layout().indexes.back();
        m_written.push_back({name, writeSeries(m_folder->temporaryPath(name), entries)});
    }

    /// Tells what was written, once it is all in place.
    void report(const std::vector<LoggedCause>& unread) const
    {
        std::uint64_t total = 0;
        for (const WrittenFile& file : m_written) {
            total += file.byteCount;
        }
        if (!m_context.options.quiet) {
            const std::string states = hasSeries() ? counted(m_states.size(), "state") + ", " : "";
            const std::string line =
                fmt::format("wrote {}: {}{}, {}", pathInFolder(m_written.back().path), states,
                            counted(m_written.size(), "file"), byteText(static_cast<double>(total)));
            static_cast<void>(std::fputs((escapedControls(line) + "\n").c_str(), stderr));
        }
        if (m_context.options.json) {
            writeDocument(makeDocument(total, unread));
        }
    }

    std::string pathInFolder(const std::string& path) const { return (fs::path(m_options.folder) / path).string(); }

    nlohmann::ordered_json makeDocument(std::uint64_t total, const std::vector<LoggedCause>& unread) const
    {
        nlohmann::ordered_json document = newDocument("export");
        document["index"] = pathInFolder(m_written.back().path);
        document["states"] = nlohmann::ordered_json::array();
        for (const ExportedState& state : m_states) {
            if (state.state != nullptr) {
                document["states"].push_back({{"id", state.state->id},
                                              {"name", state.state->name},
                                              {"value", state.state->referenceValue},
                                              {"index", pathInFolder(indexName(state))}});
            }
        }
        document["files"] = nlohmann::ordered_json::array();
        for (const WrittenFile& file : m_written) {
            document["files"].push_back({{"path", pathInFolder(file.path)}, {"bytes", file.byteCount}});
        }
        document["bytes"] = total;
        document["meshesNotRead"] = unreadDocument(unread);
        return document;
    }

    HostContext& m_context;
    const ExportOptions& m_options;
    std::unique_ptr<OpenedCase> m_opened;
    const HostMetaData& m_metaData;
    const HostGeometry* m_geometry = nullptr;
    ExportFolder* m_folder = nullptr;
    std::vector<ExportedGroup> m_groups;
    std::vector<ExportedState> m_states;
    std::vector<ExportedResult> m_results;
    std::vector<WrittenFile> m_written; ///< in the order in which they become visible
    bool m_hasUndefined = false;        ///< an array that was written has undefined values
};

} // namespace

void addExportCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const command = app->add_subcommand("export", "Write what the library delivers as VTK XML files");
    addCaseArgument(command, &options->casePath);
    command->add_option("-o,--output", options->folder, "Write to this folder, which is made if it does not exist")
        ->type_name("DIR")
        ->required()
        ->check(notEmpty());
    addSelection(command, "--part", &options->part, GROUP_HELP);
    addSelection(command, "--state", &options->state, std::string("Write values too, of these states: ") + STATE_HELP);
    addSelection(command, "--result", &options->result,
                 std::string(RESULT_HELP) + "; of the latest state without --state");
    command->add_flag("--ascii", options->ascii, "Write numbers as text");
    command->add_flag("--overwrite", options->overwrite,
                      "Replace a former export to the folder, once the new one is complete");
    addPlainFlag(command, &context->options);
    command->callback([=] {
        context->command = [=] {
            context->loadFaceZones();
            return Exporter(*context, *options).run();
        };
    });
}
