// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "records/OFBoundary.h"

#include <vector>

/// Reads the values of one field file and logs how long it took. Holds nothing; made on the stack for each request.
///
/// Arrays are sized by the caller, values item after item. The file is `folder` + "/" + `resultName`, plain or gzip.
/// False means a failure, whose reason is in the log; an array may then hold part of the values.
class OFResultReader
{
public:
    /// Reads the interior values of a field.
    ///
    /// @param resultClass the class that the file must have; one of another class gives undefined values and true
    /// @param values      emptied if the file says that it has no values
    bool readValues(const dvn::Str& folder, const dvn::Str& resultName, const dvn::Str& resultClass,
                    std::vector<double>* values) const;
    /// The same for the file of a sampled surface, which has no header and counts as read once it is open.
    ///
    /// @param[out] isInteriorRead whether the values are good
    bool readNonHeaderValues(const dvn::Str& folder, const dvn::Str& resultName, const dvn::Str& resultClass,
                             std::vector<double>* values, bool* isInteriorRead = nullptr) const;
    /// Reads the interior values and those of the patches; a patch without values in the file keeps what it held.
    ///
    /// @param[out] isInteriorRead whether the interior values are good, also where the patches make the whole fail
    bool readValuesForCellAndBoundaries(const dvn::Str& folder, const dvn::Str& resultName, const dvn::Str& resultClass,
                                        std::vector<double>* cellValues, const std::vector<OFBoundary>& boundaries,
                                        std::vector<std::vector<double>>& boundaryValues,
                                        bool* isInteriorRead = nullptr) const;

private:
    /// What log lines name as their source.
    static constexpr const char* LOG_SOURCE = "OFResultReader";

    bool readFile(bool hasHeader, const dvn::Str& folder, const dvn::Str& resultName, const dvn::Str& resultClass,
                  std::vector<double>* values, bool* isInteriorRead) const;
};
