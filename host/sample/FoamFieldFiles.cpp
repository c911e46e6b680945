// SPDX-License-Identifier: MIT
#include "sample/FoamFieldFiles.h"

#include "sample/SampleFields.h"

#include <fmt/format.h>

#include <array>
#include <functional>

namespace {

/// A field as the file needs it: its names, and its value at any place.
struct FieldForm
{
    std::string_view object;
    std::string_view className;
    std::string_view dimensions;
    std::string_view listType; ///< as in List<scalar>
    std::size_t dimension;
    std::function<SamplePoint(const SamplePoint&)> valueAt; ///< a scalar is the first component
};

std::vector<double> valuesAt(const FieldForm& form, std::span<const SamplePoint> places)
{
    std::vector<double> values;
    values.reserve(places.size() * form.dimension);
    for (const SamplePoint& place : places) {
        const SamplePoint value = form.valueAt(place);
        values.insert(values.end(), value.begin(), value.begin() + static_cast<std::ptrdiff_t>(form.dimension));
    }
    return values;
}

std::vector<double> valuesAtPoints(const FieldForm& form, const SampleMesh& mesh)
{
    std::vector<SamplePoint> places;
    places.reserve(static_cast<std::size_t>(mesh.pointCount()));
    for (int label = 0; label < mesh.pointCount(); ++label) {
        places.push_back(mesh.point(label));
    }
    return valuesAt(form, places);
}

/// One field file from top to bottom.
class FieldFile
{
public:
    FieldFile(const FoamPlace& place, const FieldForm& form, const FoamFormat& format)
        : m_form(form), m_file(place.file(std::string(form.object)), format)
    {
        m_file.header({form.className, place.location, form.object, {}});
        m_file.text(fmt::format("dimensions      [{}];\n\n\n", form.dimensions));
    }

    void internalField(std::span<const double> values)
    {
        m_file.text(fmt::format("internalField   nonuniform List<{}> \n", m_form.listType));
        list(values);
        m_file.text("\nboundaryField\n{\n");
    }

    void beginPatch(const SamplePatch& patch, std::string_view type)
    {
        m_file.text(fmt::format("    {}\n    {{\n        {:<16}{};\n", patch.name, "type", type));
    }

    void entry(std::string_view key, std::string_view value)
    {
        m_file.text(fmt::format("        {:<15} {};\n", key, value));
    }

    void listEntry(std::string_view key, std::span<const double> values)
    {
        if (values.empty()) {
            entry(key, "nonuniform 0()");
            return;
        }
        m_file.text(fmt::format("        {:<15} nonuniform List<{}> \n", key, m_form.listType));
        list(values);
    }

    void endPatch() { m_file.text("    }\n"); }

    void end()
    {
        m_file.text("}\n");
        m_file.footer();
    }

private:
    void list(std::span<const double> values)
    {
        m_file.valueList(values, m_form.dimension);
        m_file.text(m_file.binary() ? ";\n" : "\n;\n");
    }

    const FieldForm& m_form;
    FoamOutput m_file;
};

/// Patch types that prescribe the type of every field's entry.
bool constrains(const SamplePatch& patch)
{
    return patch.type == "symmetryPlane" || patch.type == "processor";
}

// The n-th patch of a box gets the n-th form, so all of them occur; the third is a symmetry plane.
enum class EntryForm
{
    FixedList,
    CellValue,
    Slip,
    Mixed,
    FixedUniform,
    Calculated
};

void writeCellPatch(FieldFile* file, const FieldForm& form, const SamplePatch& patch, EntryForm entryForm,
                    std::span<const double> values)
{
    const std::string_view uniform = form.dimension == 1 ? "uniform 300" : "uniform (0 0 0)";
    if (constrains(patch)) {
        file->beginPatch(patch, patch.type);
        if (patch.type == "processor") {
            file->listEntry("value", values);
        }
        return file->endPatch();
    }
    switch (entryForm) {
    case EntryForm::FixedList:
        file->beginPatch(patch, "fixedValue");
        file->listEntry("value", values);
        break;
    case EntryForm::CellValue:
        file->beginPatch(patch, "zeroGradient");
        break;
    case EntryForm::Slip:
        file->beginPatch(patch, "slip");
        break;
    case EntryForm::Mixed:
        file->beginPatch(patch, "mixed");
        file->entry("refValue", uniform);
        file->entry("refGradient", form.dimension == 1 ? "uniform 0" : "uniform (0 0 0)");
        file->entry("valueFraction", "uniform 0.25");
        file->listEntry("value", values);
        break;
    case EntryForm::FixedUniform:
        file->beginPatch(patch, "fixedValue");
        file->entry("value", uniform);
        break;
    case EntryForm::Calculated:
        file->beginPatch(patch, "calculated");
        file->listEntry("value", values);
        break;
    }
    file->endPatch();
}

void writeCellField(const FoamPlace& place, const FieldForm& form, const SampleMesh& mesh,
                    const SampleMeasures& measures, const FoamFormat& format)
{
    FieldFile file(place, form, format);
    file.internalField(valuesAt(form, measures.cellCentres));
    for (std::size_t number = 0; number < mesh.patches.size(); ++number) {
        const SamplePatch& patch = mesh.patches[number];
        const auto places =
            std::span(measures.faceCentres)
                .subspan(static_cast<std::size_t>(patch.startFace), static_cast<std::size_t>(patch.faceCount));
        writeCellPatch(&file, form, patch, static_cast<EntryForm>(number % 6), valuesAt(form, places));
    }
    file.end();
}

void writePointField(const FoamPlace& place, const FieldForm& form, const SampleMesh& mesh, const FoamFormat& format)
{
    FieldFile file(place, form, format);
    file.internalField(valuesAtPoints(form, mesh));
    for (const SamplePatch& patch : mesh.patches) {
        file.beginPatch(patch, constrains(patch) ? std::string_view(patch.type) : "calculated");
        file.endPatch();
    }
    file.end();
}

} // namespace

void writeFields(const FoamPlace& place, const SampleMesh& mesh, const SampleMeasures& measures, double time,
                 const FoamFormat& format)
{
    const auto temperature = [time](const SamplePoint& at) { return SamplePoint{sampleTemperature(at, time), 0, 0}; };
    const auto velocity = [time](const SamplePoint& at) { return sampleVelocity(at, time); };
    makeFolder(place.caseFolder / place.location);
    writeCellField(place, {"T", "volScalarField", "0 0 0 1 0 0 0", "scalar", 1, temperature}, mesh, measures, format);
    writeCellField(place, {"U", "volVectorField", "0 1 -1 0 0 0 0", "vector", 3, velocity}, mesh, measures, format);
    writePointField(place, {"pointT", "pointScalarField", "0 0 0 1 0 0 0", "scalar", 1, temperature}, mesh, format);
}

void writePointDisplacement(const FoamPlace& place, const SampleMesh& mesh, double time, const FoamFormat& format)
{
    const auto displacement = [time](const SamplePoint& at) {
        const SamplePoint moved = movedPoint(at, time);
        return SamplePoint{moved[0] - at[0], moved[1] - at[1], moved[2] - at[2]};
    };
    writePointField(place, {"pointDisplacement", "pointVectorField", "0 1 0 0 0 0 0", "vector", 3, displacement}, mesh,
                    format);
}
