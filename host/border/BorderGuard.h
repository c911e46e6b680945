// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostError.h"

#include <exception>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

/// Faults that the library commits in calls to the host's objects, collected until the host looks at them.
///
/// One collection serves the process, because log and registration callbacks carry no object. Any thread may add.
class BorderFaults
{
public:
    /// The one collection of the process.
    static BorderFaults& get();

    /// Notes a fault in words, as it shall stand behind the name of the operation.
    void add(const std::string& fault);

    /// A call of a row that holds a place in a host class: the library took a wrong row of the table.
    void addReservedRow(const std::string& className);

    /// The faults so far, which are forgotten by this.
    std::vector<std::string> take();

    /// @throws HostError of `Misbehaved` that names the operation and the first fault, if there is one
    void throwIfAny(const std::string& operation);

private:
    std::mutex m_mutex;
    std::vector<std::string> m_faults;
};

/// Calls into the library and turns all that may go wrong there into a `HostError` of `Misbehaved`.
///
/// No exception may cross the interface, so one that does is the library's fault whatever its type. The faults that
/// callbacks noted during the call are reported with it.
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
        throw HostError(ExitCode::Misbehaved, operation + " let an exception out: " + error.what());
    } catch (...) {
        throw HostError(ExitCode::Misbehaved, operation + " let an exception of unknown type out");
    }
}
