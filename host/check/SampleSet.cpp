// SPDX-License-Identifier: MIT
#include "check/SampleSet.h"

#include "sample/SampleCase.h"

#include <algorithm>
#include <array>

namespace {

// Large enough for inner cells everywhere, small enough that starting a process takes longer than reading the case.
constexpr int SAMPLE_CELLS = 300;
// Three, so that there is one in the middle.
constexpr int SAMPLE_STATES = 3;

struct SampleForm
{
    const char* name;
    SampleKind kind;
    FoamFormat format;
};

constexpr FoamFormat ASCII = {};
constexpr FoamFormat BINARY = {true, false};
constexpr FoamFormat GZIP = {false, true};
constexpr FoamFormat BINARY_GZIP = {true, true};

constexpr auto FORMS = std::to_array<SampleForm>({{"hex", SampleKind::Hex, ASCII},
                                                  {"hex-binary", SampleKind::Hex, BINARY},
                                                  {"hex-gzip", SampleKind::Hex, GZIP},
                                                  {"poly", SampleKind::Poly, ASCII},
                                                  {"poly-binary", SampleKind::Poly, BINARY},
                                                  {"mixed", SampleKind::Mixed, ASCII},
                                                  {"mixed-binary-gzip", SampleKind::Mixed, BINARY_GZIP},
                                                  {"zones", SampleKind::Zones, ASCII},
                                                  {"regions", SampleKind::Regions, ASCII},
                                                  {"decomposed", SampleKind::Decomposed, ASCII},
                                                  {"moving", SampleKind::Moving, ASCII},
                                                  {"surface", SampleKind::Surface, ASCII}});

} // namespace

std::vector<std::string> sampleNames()
{
    std::vector<std::string> names;
    names.reserve(FORMS.size());
    for (const SampleForm& form : FORMS) {
        names.emplace_back(form.name);
    }
    return names;
}

WrittenSample writeSample(const std::string& name, const std::filesystem::path& folder)
{
    const SampleForm& form = *std::ranges::find(FORMS, name, [](const SampleForm& f) { return std::string(f.name); });
    SampleOptions options;
    options.kind = form.kind;
    options.cells = SAMPLE_CELLS;
    options.states = SAMPLE_STATES;
    options.format = form.format;
    writeSampleCase(folder / name, options);
    WrittenSample sample = {name, folder / name, {}};
    if (form.kind == SampleKind::Zones) {
        sample.settings.emplace_back("LOAD_FACE_ZONES=on");
    }
    return sample;
}
