// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostError.h"

#include <exception>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

/// Faults in the library's calls to the host's objects, collected until the host looks at them.
///
/// There is one collection per process, because the log and registration callbacks do not carry an object. Any thread
/// may add.
class BorderFaults
{
public:
    /// The one collection of the process.
    static BorderFaults& get();

    /// Notes a fault; the text will follow the name of the operation.
    void add(const std::string& fault);

    /// Notes a call of a reserved operation of a host class: the library called through the wrong table slot.
    void addReservedRow(const std::string& className);

    /// Returns the faults so far and forgets them.
    std::vector<std::string> take();

    /// @throws HostError of `Misbehaved`, naming the operation and the first fault, if there is one
    void throwIfAny(const std::string& operation);

private:
    std::mutex m_mutex;
    std::vector<std::string> m_faults;
};

/// Calls the library and turns any failure there into a `HostError` of `Misbehaved`.
///
/// No exception may cross the interface, so one that does is the library's fault, whatever its type. Faults that
/// callbacks noted during the call are reported too.
template <typename Call>
std::invoke_result_t<Call> callLibrary(const std::string& operation, Call call)
{
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Call>>) {
            call();
            BorderFaults::get().throwIfAny(operation);
        } else {
            const auto result = call();
            BorderFaults::get().throwIfAny(operation);
            return result;
        }
    } catch (const HostError&) {
        throw;
    } catch (const std::exception& error) {
        throw HostError(ExitCode::Misbehaved, operation + " threw: " + error.what());
    } catch (...) {
        throw HostError(ExitCode::Misbehaved, operation + " threw an exception of unknown type");
    }
}
