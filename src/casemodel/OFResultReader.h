// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/Reading.h"
#include "records/OFBoundary.h"
#include "records/OFResult.h"

#include <vector>

/// Where a field is and what its file must contain.
struct OFFieldFile
{
    dvn::Str folder;     ///< holds the file, which is named `nativeName`, plain or gzip
    dvn::Str nativeName; ///< also the `object` of the file's header
    dvn::Str className;  ///< a file of another class gives undefined values, which is not an error
    int dimension = 0;   ///< components of a value
};

/// The file of a result in this folder.
OFFieldFile fieldFile(const dvn::Str& folder, const OFResult& result);

/// Reads the values of one field file and logs how long it took. Holds nothing; made on the stack for each request.
///
/// Arrays are sized by the caller, values item after item. False means a failure, whose reason is in the log; an array
/// may then hold part of the values.
class OFResultReader
{
public:
    /// The source named in log lines.
    static constexpr const char* LOG_SOURCE = "OFResultReader";

    explicit OFResultReader(Reading reading = Reading::Plain) : m_reading(reading) {}

    /// Reads the interior values of a field.
    ///
    /// @param values emptied if the file says that it has no values
    bool readValues(const OFFieldFile& field, std::vector<double>* values) const;
    /// The same for the file of a sampled surface, which has no header and counts as read once it is open.
    ///
    /// @param[out] isInteriorRead whether the values are good
    bool readNonHeaderValues(const OFFieldFile& field, std::vector<double>* values,
                             bool* isInteriorRead = nullptr) const;
    /// Reads the interior values and those of the patches; a patch without values in the file keeps what it held.
    ///
    /// @param[out] isInteriorRead whether the interior values are good, also where the patches make the whole fail
    bool readValuesForCellAndBoundaries(const OFFieldFile& field, std::vector<double>* cellValues,
                                        const std::vector<OFBoundary>& boundaries,
                                        std::vector<std::vector<double>>& boundaryValues,
                                        bool* isInteriorRead = nullptr) const;

private:
    bool readExtended(const OFFieldFile& field, std::vector<double>* values, const std::vector<OFBoundary>& boundaries,
                      std::vector<std::vector<double>>& boundaryValues) const;
    bool readFile(bool hasHeader, const OFFieldFile& field, std::vector<double>* values, bool* isInteriorRead) const;

    Reading m_reading;
};
