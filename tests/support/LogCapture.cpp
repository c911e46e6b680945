// SPDX-License-Identifier: MIT
#include "support/LogCapture.h"

#include "foamfile/OFLogger.h"

#include <mutex>

namespace {

// The callback carries no data, so it stores the lines here.
std::mutex heardMutex;
std::vector<LogLine> heard;

void receive(int level, const char* text)
{
    const std::lock_guard<std::mutex> lock(heardMutex);
    heard.emplace_back(level, text);
}

} // namespace

LogCapture::LogCapture()
{
    clear();
    OFLogger::get().init(&receive);
}

LogCapture::~LogCapture()
{
    OFLogger::get().init(nullptr);
}

std::vector<LogLine> LogCapture::lines() const
{
    const std::lock_guard<std::mutex> lock(heardMutex);
    return heard;
}

std::vector<std::string> LogCapture::texts(int level) const
{
    std::vector<std::string> result;
    for (const auto& [lineLevel, text] : lines()) {
        if (lineLevel == level) {
            result.push_back(text);
        }
    }
    return result;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(heardMutex);
    heard.clear();
}
