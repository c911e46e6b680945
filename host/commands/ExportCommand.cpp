// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "commands/Commands.h"
#include "commands/Selection.h"
#include "output/FileNames.h"
#include "output/OutputFile.h"
#include "output/ProgressBar.h"
#include "output/VtkWriter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

namespace {

namespace fs = std::filesystem;

struct ExportOptions
{
    std::string casePath;
    std::string folder;
    std::string partPattern;
    std::optional<std::string> state;
    std::optional<std::string> resultPattern;
    bool overwrite = false;
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
    std::string stem; ///< name of the folder; the index is named after it
    const HostState* state;
};

/// The results of one state in the order of the selection; null if the library has none, or has only values of other
/// parts.
using StateResults = std::vector<std::unique_ptr<HostResult>>;

/// True if the values can replace the points: one position for each node, and none missing.
bool isWholePoints(const HostValueGroup& values, std::size_t nodeCount)
{
    return values.dimension == 3 && values.itemCount() == nodeCount &&
           std::ranges::none_of(values.values, [](double value) { return value == UNDEFINED_VALUE; });
}

/// One result as an array for viewers.
VtkArray makeArray(const std::string& name, const HostValueGroup& values)
{
    VtkArray array = {name, values.dimension, values.values};
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
          m_metaData(m_opened->metaData()), m_geometry(m_opened->geometry())
    {}

    void run()
    {
        selectWhatToWrite();
        refuseToOverwrite();
        ProgressBar progress(m_context.showsProgress(), "export", "files", m_states.size() * m_groups.size());
        for (const ExportedState& state : m_states) {
            writeState(state, &progress);
        }
        if (m_states.front().state != nullptr) {
            writeSeriesIndex();
        }
    }

private:
    /// Determines groups, states and all file names before anything is read or written for them.
    void selectWhatToWrite()
    {
        const std::vector<const HostGroup*> declared = m_metaData.geometryGroups();
        FileNames names;
        for (const std::size_t index : selectGroups(*m_opened, m_options.partPattern)) {
            const HostGroup* const group = declared[index];
            const bool surface = group->kind() != HostGroupKind::Part;
            m_groups.push_back({group, index, surface, names.unique(qualifiedName(*group), surface ? ".vtp" : ".vtu")});
        }
        if (!m_options.state && !m_options.resultPattern) {
            m_states.push_back({"case", nullptr});
            return;
        }
        m_results = selectResults(*m_opened, m_options.resultPattern.value_or(""));
        for (const HostState* const state : selectStates(*m_opened, m_options.state.value_or("last"))) {
            m_states.push_back({fmt::format("case_{:04}", m_states.size()), state});
        }
        if (m_states.empty()) {
            throw HostError(ExitCode::Findings, "the case has no states to export");
        }
    }

    /// Patches of different parts may have the same name, so the name of the part is prepended.
    std::string qualifiedName(const HostGroup& group) const
    {
        const HostGroup* const parent = group.parentId ? m_metaData.findGroup(*group.parentId) : nullptr;
        return parent == nullptr ? group.name : parent->name + "." + group.name;
    }

    fs::path indexPath(const ExportedState& state) const { return fs::path(m_options.folder) / (state.stem + ".vtm"); }
    fs::path seriesPath() const { return fs::path(m_options.folder) / "case.vtm.series"; }

    /// Checks all targets before writing the first one, so that a refusal leaves nothing half done.
    void refuseToOverwrite() const
    {
        if (m_options.overwrite) {
            return;
        }
        std::vector<fs::path> targets;
        if (m_states.front().state != nullptr) {
            targets.push_back(seriesPath());
        }
        for (const ExportedState& state : m_states) {
            targets.push_back(indexPath(state));
            for (const ExportedGroup& group : m_groups) {
                targets.push_back(fs::path(m_options.folder) / state.stem / group.fileName);
            }
        }
        const auto found = std::ranges::find_if(targets, [](const fs::path& path) { return fs::exists(path); });
        if (found != targets.end()) {
            throw HostError(ExitCode::CannotWrite, fmt::format("{} exists; --overwrite replaces it", found->string()));
        }
    }

    /// The index is written last, so that it never names a missing file.
    void writeState(const ExportedState& state, ProgressBar* progress)
    {
        const StateResults results = readResults(state);
        makeFolder(fs::path(m_options.folder) / state.stem);
        for (const ExportedGroup& group : m_groups) {
            writeGroup(state, group, results);
            progress->advance();
        }
        writeVtm(indexPath(state), indexEntries(state), m_options.overwrite);
    }

    /// Reads all results of a state before writing the first group, because a result delivers all groups at once.
    StateResults readResults(const ExportedState& state)
    {
        StateResults results;
        for (const HostResultInfo* const info : m_results) {
            const bool isOwn = belongsToItsGroups(m_metaData, *info, state.state->id);
            results.push_back(isOwn ? m_opened->result(*info, state.state->id) : nullptr);
        }
        return results;
    }

    /// The grid is rebuilt for each state, which costs less than keeping the grids of all groups.
    void writeGroup(const ExportedState& state, const ExportedGroup& group, const StateResults& results)
    {
        const HostElementGroup& elements = m_geometry.elementGroups[group.index];
        const HostNodeGroup& nodes = *m_geometry.nodesOf(elements);
        VtkGrid grid = makeVtkGrid(nodes, elements, group.surface, group.group->id);
        for (std::size_t k = 0; k < results.size(); ++k) {
            const HostValueGroup* const values =
                results[k] == nullptr ? nullptr : valuesOfGroup(m_metaData, *results[k], group.index);
            if (values != nullptr && values->itemCount() != 0) {
                addValues(*m_results[k], *values, &grid);
            }
        }
        const fs::path path = fs::path(m_options.folder) / state.stem / group.fileName;
        (group.surface ? writeVtp : writeVtu)(path, grid, m_options.overwrite);
    }

    static void addValues(const HostResultInfo& info, const HostValueGroup& values, VtkGrid* grid)
    {
        // Displacements are the positions of the nodes in the state, so they take the place of the points.
        if (info.kind == KIND_DISPLACEMENT) {
            if (isWholePoints(values, grid->points->size() / 3)) {
                grid->points = &values.values;
            }
            return;
        }
        auto& arrays = info.mapping == MAPPING_NODE ? grid->pointData : grid->cellData;
        arrays.push_back(makeArray(info.name, values));
    }

    /// A block for each part with its cells and surfaces; groups without a part are at the same level as these blocks.
    std::vector<VtkIndexEntry> indexEntries(const ExportedState& state) const
    {
        std::vector<VtkIndexEntry> entries;
        std::map<std::int32_t, std::size_t> blockOfPart;
        for (const ExportedGroup& exported : m_groups) {
            const HostGroup& group = *exported.group;
            const VtkIndexEntry entry = {group.name, state.stem + "/" + exported.fileName, {}};
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
    void writeSeriesIndex() const
    {
        std::vector<VtkSeriesEntry> entries;
        for (const ExportedState& state : m_states) {
            entries.push_back({indexPath(state).filename().string(), state.state->referenceValue});
        }
        writeSeries(seriesPath(), entries, m_options.overwrite);
    }

    HostContext& m_context;
    const ExportOptions& m_options;
    std::unique_ptr<OpenedCase> m_opened;
    const HostMetaData& m_metaData;
    const HostGeometry& m_geometry;
    std::vector<ExportedGroup> m_groups;
    std::vector<ExportedState> m_states;
    std::vector<const HostResultInfo*> m_results;
};

} // namespace

void addExportCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const command = app->add_subcommand("export", "Write what the library delivers as VTK XML files");
    command->add_option("CASE", options->casePath, "A case folder or the path to its case.foam")->required();
    command->add_option("-o,--output", options->folder, "Write to this folder")->type_name("DIR")->required();
    command->add_option("--part", options->partPattern, "Only parts and groups whose name matches RE")->type_name("RE");
    command->add_option("--state", options->state, "Write values too, for these states: last, all, a time or #ID")
        ->type_name("STATE");
    command->add_option("--result", options->resultPattern, "Only results whose name or key matches RE")
        ->type_name("RE");
    command->add_flag("--overwrite", options->overwrite, "Replace existing files");
    addPlainFlag(command, &context->options);
    command->callback([=] {
        context->command = [=] {
            Exporter(*context, *options).run();
            return ExitCode::Good;
        };
    });
}
