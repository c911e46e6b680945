// SPDX-License-Identifier: MIT
#include "sample/FoamFieldFiles.h"

#include "sample/SampleFields.h"

#include <fmt/format.h>

#include <array>
#include <functional>

namespace {

/// What a file needs of a field: its names, and its value at any place.
struct FieldForm
{
    std::string_view object;
    std::string_view className;
    std::string_view dimensions;
    std::string_view listType; ///< as in List<scalar>
    std::size_t dimension;
    std::function<SamplePoint(const SamplePoint&)> valueAt; ///< a scalar is the first component
};

/// The values of a field at some places, place by place with all components together.
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

/// The values of a field at all points of a mesh, in order of their labels.
std::vector<double> valuesAtPoints(const FieldForm& form, const SampleMesh& mesh)
{
    std::vector<SamplePoint> places;
    places.reserve(static_cast<std::size_t>(mesh.pointCount()));
    for (int label = 0; label < mesh.pointCount(); ++label) {
        places.push_back(mesh.point(label));
    }
    return valuesAt(form, places);
}

/// One field file, written from top to bottom: the members must be called in order.
///
/// The layout, including spaces at line ends, is that of OpenFOAM's own writer: readers that look for a "(" or a ";" on
/// a line depend on what else is on it.
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

    /// Opens the entry of one patch; each entry starts with a type.
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
        // OpenFOAM writes an empty list without its type.
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
    /// The list and the ";" that ends its entry: on the same line after raw bytes, on its own line after text.
    void list(std::span<const double> values)
    {
        m_file.valueList(values, m_form.dimension);
        m_file.text(m_file.binary() ? ";\n" : "\n;\n");
    }

    const FieldForm& m_form;
    FoamOutput m_file;
};

/// True for patches whose type must also be the type of their entry in every field.
bool constrains(const SamplePatch& patch)
{
    return patch.type == "symmetryPlane" || patch.type == "processor";
}

/// The entry of a cell field for one patch.
struct PatchForm
{
    std::string_view type;
    std::vector<std::pair<std::string_view, std::string_view>> entries = {};
    bool listsValues = false; ///< the entry ends with a list of the values at the faces
};

/// The n-th patch of a box gets the n-th form, so that all forms occur; in a box the third patch is a symmetry plane.
PatchForm patchForm(const FieldForm& form, const SamplePatch& patch, std::size_t number)
{
    const bool scalar = form.dimension == 1;
    const std::string_view fixed = scalar ? "uniform 300" : "uniform (0 0 0)";
    const std::string_view zero = scalar ? "uniform 0" : "uniform (0 0 0)";
    if (constrains(patch)) {
        return {patch.type, {}, patch.type == "processor"};
    }
    switch (number % 6) {
    case 0:
        return {"fixedValue", {}, true};
    case 1:
        return {"zeroGradient"};
    case 2:
        return {"slip"};
    case 3:
        return {"mixed",
                {{"refValue", fixed}, {"refGradient", zero}, {"valueFraction", "uniform 0.25"}, {"value", fixed}}};
    case 4:
        return {"fixedValue", {{"value", fixed}}};
    default:
        return {"calculated", {}, true};
    }
}

/// Writes one entry; `values` are those at the face centres.
void writeCellPatch(FieldFile* file, const SamplePatch& patch, const PatchForm& form, std::span<const double> values)
{
    file->beginPatch(patch, form.type);
    for (const auto& [key, value] : form.entries) {
        file->entry(key, value);
    }
    if (form.listsValues) {
        file->listEntry("value", values);
    }
    file->endPatch();
}

/// Values at cell centres inside and at face centres on the patches.
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
        writeCellPatch(&file, patch, patchForm(form, patch, number), valuesAt(form, places));
    }
    file.end();
}

/// Patches of a point field have no values here: the points of a patch take theirs from the internal field.
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
    const auto pressure = [time](const SamplePoint& at) { return SamplePoint{samplePressure(at, time), 0, 0}; };
    const auto velocity = [time](const SamplePoint& at) { return sampleVelocity(at, time); };
    makeFolder(place.caseFolder / place.location);
    writeCellField(place, {"T", "volScalarField", "0 0 0 1 0 0 0", "scalar", 1, temperature}, mesh, measures, format);
    writeCellField(place, {"U", "volVectorField", "0 1 -1 0 0 0 0", "vector", 3, velocity}, mesh, measures, format);
    writeCellField(place, {"p", "volScalarField", "0 2 -2 0 0 0 0", "scalar", 1, pressure}, mesh, measures, format);
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
