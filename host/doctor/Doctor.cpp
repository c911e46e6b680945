// SPDX-License-Identifier: MIT
#include "doctor/Doctor.h"

#include "border/OpenedCase.h"
#include "doctor/Examination.h"
#include "doctor/SlowNotes.h"
#include "doctor/Wording.h"
#include "output/ProgressBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

/// Settings of one way of reading. Names are not mapped, so that results have those of the files.
HostOptions settingsFor(const PluginLibrary& library, const DoctorOptions& options, bool isExtended)
{
    std::vector<std::string> texts = options.settings;
    texts.emplace_back("RESULTS_NAMES_MAPPING=");
    texts.push_back(fmt::format("{}={}", HostOptions::EXTENDED_READING, isExtended ? "on" : "off"));
    return HostOptions::parse(texts, library.providerInfo());
}

/// The times to look at: values cost as much as showing them.
std::vector<CaseTime> chosenTimes(const CaseFolder& folder, const std::string& states)
{
    const std::vector<CaseTime>& all = folder.times();
    if (states == "all" || (states == "some" && all.size() <= 3)) {
        return all;
    }
    if (states == "some") {
        return {all.front(), all[all.size() / 2], all.back()};
    }
    if (all.empty()) {
        return all;
    }
    if (states == "latest" || states == "last") {
        return {all.back()};
    }
    if (states == "first") {
        return {all.front()};
    }
    // By name, else by a value that is near to it, never to that of the longest time.
    const std::optional<double> wanted = timeOfName(states);
    std::vector<CaseTime> chosen;
    std::ranges::copy_if(all, std::back_inserter(chosen), [&](const CaseTime& time) { return time.name == states; });
    if (chosen.empty()) {
        std::ranges::copy_if(all, std::back_inserter(chosen), [&](const CaseTime& time) {
            return wanted && std::abs(time.value - *wanted) <= 1e-6 * std::abs(*wanted);
        });
    }
    if (chosen.empty()) {
        throw HostError(ExitCode::Usage, fmt::format("--state: '{}' is neither some, first, latest, all nor a time of "
                                                     "the case, which go from {} to {}",
                                                     states, all.front().name, all.back().name));
    }
    return chosen;
}

/// Why the library does not open the case: the last error that it logged, else what the host says.
Cause refusalCause(const CaseFolder& folder, const Delivery& delivery)
{
    const LoggedCause said = delivery.errors().empty() ? LoggedCause{"", delivery.refusal()} : delivery.errors().back();
    return {"refused",
            "the case is refused: " + said.reason,
            "correct the file that is named",
            {said.file.empty() ? "." : wording::pathIn(folder.root(), said.file), 0}};
}

/// Why a description file cannot be read line by line; none if nothing is found.
std::optional<Cause> layoutCause(const CaseFolder& folder, const std::string& path)
{
    const CaseFile file = readCaseFile(folder.root() / path, folder.root(), false);
    if (!file.isOpen) {
        return std::nullopt;
    }
    if (file.content.items && !file.content.statedCount) {
        return Cause{"no-count", "the list of patches or zones has no count before it", "", {path, 0}};
    }
    if (file.header("object") != wording::fileName(path)) {
        return Cause{"object-name",
                     fmt::format("the object in the header is {}, not the name of the file", file.header("object")),
                     "",
                     {path, 0}};
    }
    const foamdict::Dictionary none;
    for (const foamdict::Entry& entry : (file.content.items ? *file.content.items : none).entries()) {
        if (file.header("format") != "binary" && file.textOfLine(entry.line) != entry.keyword) {
            return Cause{"layout", "names and braces are not on lines of their own", "", {path, entry.line}};
        }
    }
    return std::nullopt;
}

Cause causeOfRefusal(const CaseFolder& folder, const Delivery& plain)
{
    std::vector<std::string> files = {"system/controlDict"};
    for (const CaseMesh& mesh : folder.meshes()) {
        for (const char* const name : {"boundary", "cellZones", "faceZones"}) {
            files.push_back(mesh.folder + "/" + name);
        }
    }
    for (const std::string& file : files) {
        if (auto found = layoutCause(folder, file)) {
            found->reason = "the case is refused: " + found->reason;
            return *found;
        }
    }
    return refusalCause(folder, plain);
}

void examineClouds(Examination& examination)
{
    const CaseFolder& folder = examination.folder;
    for (const CaseTime& time : folder.times()) {
        for (const CaseMesh& mesh : folder.meshes()) {
            for (const std::string& place : folder.fieldFolders(mesh, time.name)) {
                const std::string clouds = place + "/lagrangian";
                if (folder.hasFolder(clouds)) {
                    examination.report.findings
                        .add(FindingKind::Hidden, {"clouds", "particles have no place in hosts", "", {clouds, 0}})
                        .times.insert(time.name);
                }
            }
        }
    }
}

/// What is there beside meshes and fields, at any time.
void examineOmissions(Examination& examination)
{
    const CaseFolder& folder = examination.folder;
    Findings& findings = examination.report.findings;
    for (const UnreadablePlace& place : folder.unreadable()) {
        findings.add(
            FindingKind::Hidden,
            {"unreadable", "the folder cannot be listed: " + place.reason, "check its permissions", {place.path, 0}});
    }
    for (const std::string& name : folder.collatedFolders()) {
        findings.add(FindingKind::Hidden, {"collated",
                                           "files in which all processors are written together are not read",
                                           "write them with the file handler uncollated",
                                           {name, 0}});
    }
    for (const std::string& name : folder.almostTimes()) {
        findings.add(FindingKind::Extended, {"no-time",
                                             "the folder is taken for a time, because its name begins like a number",
                                             "move it out of the case",
                                             {name, 0}});
    }
    if (folder.hasFolder("constant/faMesh")) {
        findings.add(FindingKind::Hidden,
                     {"finite-area", "finite-area meshes are not read", "", {"constant/faMesh", 0}});
    }
    examineClouds(examination);
}

void fillForms(const CaseFolder& folder, CaseForms* forms)
{
    std::set<std::string> regions;
    for (const CaseMesh& mesh : folder.meshes()) {
        if (!mesh.region.empty()) {
            regions.insert(mesh.region);
        }
    }
    forms->regions.assign(regions.begin(), regions.end());
    forms->processors = folder.processors().size();
    forms->times = folder.times().size();
}

} // namespace

void CaseForms::count(bool isGzip, bool isBinary, const std::string& arch)
{
    ++files[isBinary ? "binary" : "ascii"];
    files["gzip"] += isGzip ? 1 : 0;
    if (isBinary && !arch.empty()) {
        rawForms.insert(arch);
    }
}

DoctorReport examineCase(PluginLibrary& library, const std::string& casePath, const DoctorOptions& options)
{
    const std::filesystem::path token = OpenedCase::tokenFile(casePath);
    const std::filesystem::path root = token.parent_path();
    std::error_code error;
    if (token.filename() != library.providerInfo().fileMask || !std::filesystem::is_directory(root, error)) {
        throw HostError(ExitCode::CaseRefused,
                        fmt::format("{} is neither a folder nor named {}", casePath, library.providerInfo().fileMask));
    }
    const HostOptions plainSettings = settingsFor(library, options, false);
    const HostOptions extendedSettings = settingsFor(library, options, true);
    const CaseFolder folder(root);
    const std::vector<CaseTime> times = chosenTimes(folder, options.states);

    Delivery plain(library, casePath, plainSettings);
    DoctorReport report;
    report.folder = root.string();
    Cause refusal = plain.isOpen() ? Cause() : causeOfRefusal(folder, plain);
    Delivery extended(library, casePath, extendedSettings);
    Examination examination = {folder, plain, extended, extendedSettings, library.providerInfo(), report, refusal};
    if (!extended.isOpen()) {
        report.findings.add(FindingKind::Hidden, refusalCause(folder, extended));
    } else {
        if (!plain.isOpen()) {
            report.findings.add(FindingKind::Extended, refusal);
        }
        examineMeshes(examination);
        ProgressBar progress(options.showsProgress, "looking at times", "times", times.size());
        for (const CaseTime& time : times) {
            examineFields(examination, time);
            examineMovedPoints(examination, time);
            progress.advance();
        }
        examineSurfaces(examination, times);
    }
    examineOmissions(examination);
    fillForms(folder, &report.forms);
    for (const CaseTime& time : times) {
        report.timesLookedAt.push_back(time.name);
    }
    report.slow = slowNotes(folder);
    return report;
}
