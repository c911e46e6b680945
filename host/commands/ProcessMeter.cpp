// SPDX-License-Identifier: MIT
#include "commands/ProcessMeter.h"

#include <fstream>
#include <string>

namespace {

// The system reports memory in this unit, whatever it calls it.
constexpr std::uint64_t KILOBYTE = 1024;

/// The number after a key in one of the system's files about this process.
std::uint64_t figureOf(const char* file, const std::string& key)
{
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(key)) {
            return std::stoull(line.substr(key.size()));
        }
    }
    return 0;
}

std::uint64_t bytesRead()
{
    return figureOf("/proc/self/io", "rchar:");
}

/// Resets the peak to the current size, so that each piece of work shows its own peak.
void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

} // namespace

ProcessMeter::ProcessMeter() : m_bytesBefore(0)
{
    resetPeak();
    m_bytesBefore = bytesRead();
    m_start = std::chrono::steady_clock::now();
}

ProcessCost ProcessMeter::stop() const
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    return {elapsed.count(), bytesRead() - m_bytesBefore, figureOf("/proc/self/status", "VmHWM:") * KILOBYTE};
}
