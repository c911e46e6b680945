// SPDX-License-Identifier: MIT
#include "sample/SampleCase.h"

#include "border/HostError.h"
#include "output/Interrupt.h"
#include "sample/FoamFieldFiles.h"
#include "sample/FoamMeshFiles.h"
#include "sample/HexMesh.h"
#include "sample/MixedMesh.h"
#include "sample/PolyhedraMesh.h"
#include "sample/SampleFields.h"
#include "sample/SampleSurfaces.h"
#include "sample/SubMesh.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>

namespace {

namespace fs = std::filesystem;

constexpr const char* TOKEN_NAME = "case.foam";
/// Names the entries of a sample, so that it can be replaced without touching anything else.
constexpr const char* LIST_NAME = ".ddphost-sample";
constexpr const char* TEMPORARY_NAME = ".ddphost-sample-new";
constexpr int PROCESSORS = 4;
constexpr int WRITE_INTERVAL = 10;
constexpr double TIME_STEP = 0.05;
constexpr std::array<const char*, 2> REGION_NAMES = {"left", "right"};

/// The lattice of a mixed mesh of about this many cells.
BoxLattice mixedLattice(int cells)
{
    BoxLattice lattice = latticeOfAbout(static_cast<int>(cells / MIXED_CELLS_PER_CUBE));
    lattice.counts[0] = std::max(MIXED_SLABS, (lattice.counts[0] + MIXED_SLABS / 2) / MIXED_SLABS * MIXED_SLABS);
    return lattice;
}

/// The number n of cubes per edge for which (n + 1)^3 + n^3 is closest to this many cells.
int cubesPerEdge(int cells)
{
    const auto cellsOf = [](double n) { return std::pow(n + 1, 3) + std::pow(n, 3); };
    int n = 1;
    while (std::abs(cellsOf(n + 1) - cells) < std::abs(cellsOf(n) - cells)) {
        ++n;
    }
    return n;
}

/// Writes one case, with a member function for each feature that not all kinds have.
class CaseWriter
{
public:
    CaseWriter(const fs::path& folder, const SampleOptions& options)
        : m_target(folder), m_folder(folder / TEMPORARY_NAME), m_options(options)
    {
        for (int state = 0; state < options.states; ++state) {
            m_times.push_back(0.5 * state);
        }
    }

    /// Everything is written to a folder inside the target and moved out of it when it is whole, the token file last,
    /// so that a case that has one is complete. A failure or an interrupt leaves the target as it was.
    SampleReport write()
    {
        refuseForeignFolder();
        const OnInterrupt cleanUp([this] { removeTemporary(); });
        try {
            writeAll();
            moveToTarget();
        } catch (...) {
            removeTemporary();
            throw;
        }
        removeTemporary();
        return report();
    }

private:
    void writeAll()
    {
        removeTemporary(); // left by a process that was killed
        makeFolder(m_folder / "system");
        makeMesh();
        if (m_options.kind == SampleKind::Decomposed) {
            writeProcessors();
        } else {
            writeWholeMesh();
        }
        writeExtras();
        writeControlDict();
        FoamOutput(m_folder / TOKEN_NAME).close();
    }

    void removeTemporary() const
    {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
        // Fails, as it should, unless the folder was made for nothing.
        fs::remove(m_target, ignored);
    }

    /// The entries of the sample in the target, the list itself included; none if there is no sample.
    std::vector<std::string> formerEntries() const
    {
        std::vector<std::string> entries;
        std::ifstream list(m_target / LIST_NAME);
        for (std::string line; std::getline(list, line);) {
            // A damaged list must not lead out of the folder.
            if (!line.empty() && line != ".." && line != "." && line.find('/') == std::string::npos) {
                entries.push_back(line);
            }
        }
        return entries;
    }

    void moveToTarget() const
    {
        std::vector<std::string> entries;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
            entries.push_back(entry.path().filename().string());
        }
        std::partition(entries.begin(), entries.end(), [](const std::string& name) { return name != TOKEN_NAME; });
        for (const std::string& former : formerEntries()) {
            fs::remove_all(m_target / former);
        }
        std::ofstream list(m_target / LIST_NAME);
        list << LIST_NAME << "\n" << fmt::format("{}\n", fmt::join(entries, "\n"));
        if (!list.flush()) {
            throw HostError(ExitCode::CannotWrite, fmt::format("cannot write {}", (m_target / LIST_NAME).string()));
        }
        for (const std::string& entry : entries) {
            fs::rename(m_folder / entry, m_target / entry);
        }
    }

    FoamPlace at(const std::string& location) const { return {m_folder, location}; }
    /// As short as possible without loss, as OpenFOAM names its time folders.
    static std::string nameOf(double time) { return fmt::format("{}", time); }

    /// A non-empty folder may be a case that took someone days to compute, so only samples are replaced.
    void refuseForeignFolder() const
    {
        std::error_code error;
        if (!fs::exists(m_target, error)) {
            return;
        }
        const auto isForeign = [](const fs::directory_entry& entry) {
            return entry.path().filename() != TEMPORARY_NAME;
        };
        const fs::directory_iterator entries(m_target, error);
        const bool isTaken = error || std::any_of(begin(entries), end(entries), isForeign);
        if (isTaken && formerEntries().empty()) {
            throw HostError(ExitCode::CannotWrite,
                            fmt::format("{} is not an empty folder, and not a sample that --overwrite could replace",
                                        m_target.string()));
        }
        if (isTaken && !m_options.overwrite) {
            throw HostError(ExitCode::CannotWrite,
                            fmt::format("{} has a sample already; --overwrite replaces it", m_target.string()));
        }
    }

    void makeMesh()
    {
        m_lattice = latticeOfAbout(m_options.cells);
        switch (m_options.kind) {
        case SampleKind::Poly:
            m_mesh = makePolyhedraMesh(cubesPerEdge(m_options.cells));
            break;
        case SampleKind::Mixed:
            m_mesh = makeMixedMesh(mixedLattice(m_options.cells));
            break;
        default:
            m_mesh = makeHexMesh(m_lattice);
        }
    }

    /// The mesh and its fields, which every case except a decomposed one has.
    void writeWholeMesh() const
    {
        writeMeshFiles(at("constant/polyMesh"), m_mesh, m_options.format);
        const SampleMeasures measures = measure(m_mesh);
        for (const double time : m_times) {
            writeFields(at(nameOf(time)), m_mesh, measures, time, m_options.format);
        }
        writeTimeDicts();
    }

    /// What makes the kinds differ, besides the shape of their cells.
    void writeExtras() const
    {
        switch (m_options.kind) {
        case SampleKind::Zones:
            writeZones();
            break;
        case SampleKind::Regions:
            writeRegions();
            break;
        case SampleKind::Moving:
            writeMovedPoints();
            break;
        case SampleKind::Surface:
            for (const double time : m_times) {
                writeSampledSurfaces(m_folder / "postProcessing/sampleSurface" / nameOf(time), m_lattice, m_mesh, time);
            }
            break;
        default:
            break;
        }
    }

    /// Two cell zones that leave some cells out, and two face zones, one with each form of flip map.
    void writeZones() const
    {
        SampleCellZone heater = {"heater", {}};
        SampleCellZone probe = {"probe", {m_mesh.cellCount - 1}};
        for (int cell = 0; cell < m_mesh.cellCount / 3; ++cell) {
            heater.cells.push_back(cell);
        }
        writeCellZones(at("constant/polyMesh"), {heater, probe});
        SampleFaceZone inner = {"inner", {}, {false}};
        SampleFaceZone skin = {"skin", {}, {}};
        for (int face = 0; face < m_mesh.internalFaceCount(); face += 3) {
            inner.faces.push_back(face);
        }
        for (int face = m_mesh.internalFaceCount(); face < m_mesh.faceCount(); face += 2) {
            skin.faces.push_back(face);
            skin.flips.push_back(face % 4 == 0);
        }
        writeFaceZones(at("constant/polyMesh"), {inner, skin});
    }

    /// Calls `use(domain, piece)` for pieces of the mesh along x.
    void forEachSlab(int count, const std::function<SamplePatch(int, int)>& interfacePatch,
                     const std::function<void(int, const SubMesh&)>& use) const
    {
        const int nx = m_lattice.counts[0];
        std::vector<int> domains(static_cast<std::size_t>(m_mesh.cellCount));
        for (int cell = 0; cell < m_mesh.cellCount; ++cell) {
            domains[static_cast<std::size_t>(cell)] = (cell % nx) * count / nx;
        }
        for (int domain = 0; domain < count; ++domain) {
            use(domain,
                extractDomain(m_mesh, domains, domain, [&](int other) { return interfacePatch(domain, other); }));
        }
    }

    /// The whole mesh is kept next to its regions, as after splitting a mesh, and its zones mark the same cells.
    void writeRegions() const
    {
        const auto interfacePatch = [](int mine, int other) {
            const std::string here = REGION_NAMES[static_cast<std::size_t>(mine)];
            const std::string there = REGION_NAMES[static_cast<std::size_t>(other)];
            return SamplePatch{
                here + "_to_" + there,
                "mappedWall",
                "wall",
                {{"sampleMode", "nearestPatchFace"}, {"sampleRegion", there}, {"samplePatch", there + "_to_" + here}}};
        };
        std::vector<SampleCellZone> zones;
        forEachSlab(2, interfacePatch, [&](int domain, const SubMesh& piece) {
            const std::string name = REGION_NAMES[static_cast<std::size_t>(domain)];
            zones.push_back({name, std::vector<std::int32_t>(piece.cells.begin(), piece.cells.end())});
            writeMeshFiles(at("constant/" + name + "/polyMesh"), piece.mesh, m_options.format);
            writePieceFields(piece.mesh, name);
        });
        writeCellZones(at("constant/polyMesh"), zones);
    }

    /// Fields are in the time folder of the case and not in that of the processor, since readers of whole cases look
    /// for them there.
    void writeProcessors() const
    {
        const auto interfacePatch = [](int mine, int other) {
            return SamplePatch{fmt::format("procBoundary{}to{}", mine, other),
                               "processor",
                               "processor",
                               {{"matchTolerance", "0.0001"},
                                {"transform", "unknown"},
                                {"myProcNo", std::to_string(mine)},
                                {"neighbProcNo", std::to_string(other)}}};
        };
        forEachSlab(std::min(PROCESSORS, m_lattice.counts[0]), interfacePatch, [&](int domain, const SubMesh& piece) {
            const std::string name = fmt::format("processor{}", domain);
            writeMeshFiles({m_folder / name, "constant/polyMesh"}, piece.mesh, m_options.format);
            writePieceFields(piece.mesh, name);
        });
        writeTimeDicts();
    }

    /// Writes the fields of one region or one processor at all times.
    void writePieceFields(const SampleMesh& mesh, const std::string& name) const
    {
        const SampleMeasures measures = measure(mesh);
        for (const double time : m_times) {
            writeFields(at(nameOf(time) + "/" + name), mesh, measures, time, m_options.format);
        }
    }

    /// Time 0 has no points; its mesh is the one in constant.
    void writeMovedPoints() const
    {
        for (const double time : m_times) {
            const FoamPlace place = at(nameOf(time));
            writePointDisplacement(place, m_mesh, time, m_options.format);
            if (time == 0) {
                continue;
            }
            std::vector<double> points;
            points.reserve(m_mesh.points.size());
            for (int label = 0; label < m_mesh.pointCount(); ++label) {
                const SamplePoint moved = movedPoint(m_mesh.point(label), time);
                points.insert(points.end(), moved.begin(), moved.end());
            }
            writePoints(at(nameOf(time) + "/polyMesh"), points, m_options.format);
        }
    }

    /// A solver writes these for every time except the first.
    void writeTimeDicts() const
    {
        for (const double time : m_times) {
            if (time == 0) {
                continue;
            }
            const std::string location = nameOf(time) + "/uniform";
            makeFolder(m_folder / location);
            FoamOutput file(m_folder / location / "time");
            file.header({"dictionary", location, "time", {}});
            file.text(fmt::format("value           {};\n\nname            \"{}\";\n\nindex           {};\n\n"
                                  "deltaT          {};\n\ndeltaT0         {};\n",
                                  time, nameOf(time), std::lround(time / TIME_STEP), TIME_STEP, TIME_STEP));
            file.footer();
        }
    }

    /// The entries that every case has; readers take the write interval from here.
    void writeControlDict() const
    {
        FoamOutput file(m_folder / "system/controlDict");
        file.header({"dictionary", "system", "controlDict", {}});
        file.text(fmt::format("application     none;\n\nstartFrom       startTime;\n\nstartTime       0;\n\n"
                              "stopAt          endTime;\n\nendTime         {};\n\ndeltaT          {};\n\n"
                              "writeControl    timeStep;\n\nwriteInterval   {};\n\npurgeWrite      0;\n\n"
                              "writeFormat     {};\n\nwritePrecision  6;\n\nwriteCompression {};\n\n"
                              "timeFormat      general;\n\ntimePrecision   6;\n\nrunTimeModifiable false;",
                              m_times.back(), TIME_STEP, WRITE_INTERVAL, m_options.format.binary ? "binary" : "ascii",
                              m_options.format.gzip ? "on" : "off"));
        file.footer();
    }

    SampleReport report() const
    {
        SampleReport result = {m_mesh.cellCount, m_mesh.pointCount(), m_mesh.faceCount(), {}};
        for (const double time : m_times) {
            result.times.push_back(nameOf(time));
        }
        return result;
    }

    fs::path m_target;
    fs::path m_folder; ///< inside the target, until the case is whole
    const SampleOptions& m_options;
    std::vector<double> m_times;
    BoxLattice m_lattice; ///< of the meshes of hexahedra
    SampleMesh m_mesh;
};

} // namespace

SampleReport writeSampleCase(const std::filesystem::path& folder, const SampleOptions& options)
{
    return CaseWriter(folder, options).write();
}
