// SPDX-License-Identifier: MIT
#include "border/BorderGuard.h"

#include <utility>

BorderFaults& BorderFaults::get()
{
    static BorderFaults faults;
    return faults;
}

void BorderFaults::add(const std::string& fault)
{
    const std::lock_guard lock(m_mutex);
    m_faults.push_back(fault);
}

void BorderFaults::addReservedRow(const std::string& className)
{
    add("a reserved row of " + className + " was called");
}

std::vector<std::string> BorderFaults::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_faults, {});
}

void BorderFaults::throwIfAny(const std::string& operation)
{
    const std::vector<std::string> faults = take();
    if (!faults.empty()) {
        throw HostError(ExitCode::Misbehaved, operation + ": " + faults.front());
    }
}
