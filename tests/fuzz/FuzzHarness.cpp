// SPDX-License-Identifier: MIT
#include "fuzz/FuzzHarness.h"

#include "foamfile/OFFile.h"
#include "foamfile/OFLogger.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <iostream>
#include <mutex>
#include <stdexcept>

namespace {

/// More than there are cores, so that pieces finish in any order.
constexpr int MOST_THREADS = 8;

std::mutex logMutex;
std::vector<std::string> logLines;

void keepLine(int level, const char* text)
{
    if (level == 1 || level == 3) {
        const std::lock_guard lock(logMutex);
        // Without the run times that some lines report.
        const std::string_view line(text);
        logLines.emplace_back(
            line.substr(0, std::min({line.find("ime used"), line.find("Total time"), line.find("[Parallel] in")})));
    }
}

/// Where the first chunk of a list starts: after the first "(" past the header and the line feeds there. 0 if no list
/// has started or no whole header precedes it, because a long text would then be searched for one line by line.
std::size_t listStart(const std::string& text)
{
    const bool isBare = text.find_first_of("0123456789") == 0;
    const std::size_t brace = std::min(text.find("FoamFile\n{"), text.size());
    const std::size_t bracket = text.find('(', isBare ? 0 : std::min(text.find("\n}", brace), text.size()));
    return bracket == std::string::npos ? 0 : std::min(text.find_first_not_of('\n', bracket + 1), text.size());
}

void repeatLastLine(std::size_t times, std::size_t limit, std::string* text)
{
    const std::string line = text->substr(text->rfind('\n', text->size() - std::min<std::size_t>(text->size(), 2)) + 1);
    for (std::size_t i = 1; i < times && text->size() + line.size() < limit; ++i) {
        *text += line;
    }
}

void padToBorder(std::size_t origin, std::size_t k, std::size_t limit, std::string* text)
{
    const std::size_t place = text->size() - std::min(origin, text->size());
    const std::size_t pad = (place / OFFile::CHUNK_SIZE + 2) * OFFile::CHUNK_SIZE + k - 128 - place;
    if (text->size() + pad % OFFile::CHUNK_SIZE < limit) {
        text->append(pad % OFFile::CHUNK_SIZE, '\n');
    }
}

} // namespace

void expect(bool isGood, const std::string& finding)
{
    if (!isGood) {
        std::cerr << "FINDING: " << finding << std::endl;
        std::abort();
    }
}

void expectEqual(const Outcome& a, const Outcome& b, const std::string& finding)
{
    if (a.bytes == b.bytes) {
        return;
    }
    constexpr std::size_t CONTEXT = 100;
    const auto place = static_cast<std::size_t>(std::ranges::mismatch(a.bytes, b.bytes).in1 - a.bytes.begin());
    const std::size_t begin = place - std::min(CONTEXT, place);
    expect(false, finding + "\n" + a.bytes.substr(begin, 2 * CONTEXT) + "\n" + b.bytes.substr(begin, 2 * CONTEXT));
}

bool tolerate(Outcome* outcome, const std::function<void()>& call)
{
    std::string message;
    try {
        call();
        return true;
    } catch (const std::out_of_range& error) {
        message = error.what();
    } catch (const std::invalid_argument& error) {
        message = error.what();
    }
    expect(message == "map::at:  key not found" || message == "stoi", "an undocumented exception text: " + message);
    outcome->add(message);
    outcome->isDoubtful = true;
    return false;
}

Outcome observe(int threads, const std::function<void(Outcome*)>& call)
{
    static const tbb::global_control control(tbb::global_control::max_allowed_parallelism, MOST_THREADS);
    static tbb::task_arena one(1);
    static tbb::task_arena many(MOST_THREADS);
    OFLogger::get().init(keepLine);
    logLines.clear();
    Outcome outcome;
    (threads == 1 ? one : many).execute([&] { tolerate(&outcome, [&] { call(&outcome); }); });
    // Lines of different workers arrive in any order.
    std::ranges::sort(logLines);
    outcome.add(logLines);
    outcome.isDoubtful = outcome.isDoubtful || std::ranges::any_of(logLines, [](const std::string& line) {
                             return line.find("Invalid number of items") != std::string::npos ||
                                    line.find("Cannot read a list") != std::string::npos;
                         });
    return outcome;
}

std::string expanded(std::string_view text, std::size_t mostChunks)
{
    const std::size_t limit = mostChunks * OFFile::CHUNK_SIZE;
    std::string result;
    std::size_t origin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char letter = text[i] == ESCAPE && i + 2 < text.size() ? text[i + 1] : '\0';
        if (std::string_view("RDOP").find(letter) == std::string_view::npos) {
            result += text[i];
            continue;
        }
        const std::size_t k = static_cast<std::uint8_t>(text[i + 2]);
        i += 2;
        if (letter == 'D') {
            result.append(32 * (k + 1), '9');
        } else if (letter == 'O') {
            origin = result.size();
        } else if (listStart(result) != 0 && letter == 'R') {
            repeatLastLine((k + 1) * (k + 1), limit, &result);
        } else if (listStart(result) != 0) {
            padToBorder(origin == 0 ? listStart(result) : origin, k, limit, &result);
        }
    }
    return result;
}

const std::vector<FuzzTarget>& fuzzTargets()
{
    static const std::vector<FuzzTarget> targets = [] {
        std::vector<FuzzTarget> all = fileTargets();
        for (const auto& rows : {valueTargets(), caseTargets(), grammarTargets()}) {
            all.insert(all.end(), rows.begin(), rows.end());
        }
        return all;
    }();
    return targets;
}

const FuzzTarget* findTarget(std::string_view name)
{
    const auto target = std::ranges::find(fuzzTargets(), name, &FuzzTarget::name);
    return target == fuzzTargets().end() ? nullptr : &*target;
}
