// SPDX-License-Identifier: MIT
#include "bench/BenchMeshes.h"
#include "bench/SyntheticMesh.h"
#include "foamfile/OFFile.h"
#include "mesh/OFPolymeshReader.h"
#include "support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <filesystem>

namespace {

/// The lists of the million hexahedra on disk: "ascii", "binary" and "gzip" are `polyMesh` folders.
const TempFolder& meshFolders()
{
    static const TempFolder FOLDER;
    static const bool IS_WRITTEN = [] {
        const auto write = [](const std::string& form, const MeshFiles& files) {
            FOLDER.write(form + "/points", files.points);
            FOLDER.write(form + "/faces", files.faces);
            FOLDER.write(form + "/owner", files.owner);
            FOLDER.write(form + "/neighbour", files.neighbour);
        };
        const MeshFiles ascii = asciiFiles(millionHexahedra());
        write("ascii", ascii);
        write("binary", binaryFiles(millionHexahedra()));
        FOLDER.writeGz("gzip/points.gz", ascii.points);
        FOLDER.writeGz("gzip/faces.gz", ascii.faces);
        FOLDER.writeGz("gzip/owner.gz", ascii.owner);
        FOLDER.writeGz("gzip/neighbour.gz", ascii.neighbour);
        write("polyhedra", asciiFiles(manyPolyhedra()));
        return true;
    }();
    benchmark::DoNotOptimize(IS_WRITTEN);
    return FOLDER;
}

/// Counts the bytes of text or raw data, not those of the compressed file.
void countBytes(benchmark::State& state, const std::string& form, const std::string& file)
{
    const std::string plain = form == "gzip" ? "ascii" : form;
    const std::uintmax_t bytes = std::filesystem::file_size(meshFolders().path() / plain / file);
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * static_cast<std::int64_t>(state.iterations()));
}

void readLabels(benchmark::State& state, const std::string& form)
{
    const dvn::Str path = meshFolders().str(form + "/owner");
    for (auto _ : state) {
        std::vector<int> labels;
        int cellCount = 0;
        if (!OFFile(true).readLabelList(path, "owner", &labels, &cellCount)) {
            state.SkipWithError("cannot be read");
        }
    }
    countBytes(state, form, "owner");
}

void readPoints(benchmark::State& state, const std::string& form)
{
    const dvn::Str path = meshFolders().str(form + "/points");
    for (auto _ : state) {
        std::vector<double> points;
        if (!OFFile(true).readVectorField(path, "points", &points)) {
            state.SkipWithError("cannot be read");
        }
    }
    countBytes(state, form, "points");
}

void readFaces(benchmark::State& state, const std::string& form)
{
    const dvn::Str path = meshFolders().str(form + "/faces");
    for (auto _ : state) {
        FacesData faces;
        if (!OFFile(true).readFaceList(path, "faces", &faces)) {
            state.SkipWithError("cannot be read");
        }
    }
    countBytes(state, form, "faces");
}

/// All four files at the same time, as when a case is opened.
void readMesh(benchmark::State& state, const std::string& form)
{
    const dvn::Str folder = meshFolders().str(form);
    for (auto _ : state) {
        OFPolymesh mesh;
        benchmark::DoNotOptimize(OFPolymeshReader().read(folder, &mesh));
    }
}

void registerAll()
{
    const auto add = [](const std::string& name, void (*run)(benchmark::State&, const std::string&),
                        const std::string& form) {
        benchmark::RegisterBenchmark((name + "/" + form).c_str(), run, form)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    for (const std::string form : {"ascii", "binary", "gzip"}) {
        add("readLabels", readLabels, form);
        add("readPoints", readPoints, form);
        add("readFaces", readFaces, form);
        add("readMesh", readMesh, form);
    }
    add("readMesh", readMesh, "polyhedra");
}

const bool IS_REGISTERED = (registerAll(), true);

} // namespace
