// SPDX-License-Identifier: MIT
#include "support/LogCapture.h"

#include "foamfile/OFLogger.h"

#include <mutex>
#include <ostream>

namespace {

/// One lock for all captures: the callback carries no data of its own, so the innermost one is a global.
std::mutex captureMutex;
LogCapture* innermostCapture = nullptr;

} // namespace

std::ostream& operator<<(std::ostream& stream, const LogLine& line)
{
    return stream << line.level << ' ' << line.text;
}

LogCapture::LogCapture() : m_outer(nullptr)
{
    const std::lock_guard<std::mutex> lock(captureMutex);
    m_outer = innermostCapture;
    innermostCapture = this;
    OFLogger::get().init(&LogCapture::receive);
}

LogCapture::~LogCapture()
{
    const std::lock_guard<std::mutex> lock(captureMutex);
    innermostCapture = m_outer;
    if (m_outer == nullptr) {
        OFLogger::get().init(nullptr);
    }
}

std::vector<LogLine> LogCapture::lines() const
{
    const std::lock_guard<std::mutex> lock(captureMutex);
    return m_lines;
}

std::vector<std::string> LogCapture::texts(int level) const
{
    std::vector<std::string> result;
    for (const LogLine& line : lines()) {
        if (line.level == level) {
            result.push_back(line.text);
        }
    }
    return result;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(captureMutex);
    m_lines.clear();
}

void LogCapture::receive(int level, const char* text)
{
    const std::lock_guard<std::mutex> lock(captureMutex);
    if (innermostCapture != nullptr) {
        innermostCapture->m_lines.push_back({level, text});
    }
}
