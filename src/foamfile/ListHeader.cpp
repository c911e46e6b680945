// SPDX-License-Identifier: MIT
#include "foamfile/ListHeader.h"

bool FoamFile::open(const dvn::Str& path)
{
    text.setReading(reading);
    if (!text.open(path)) {
        return false;
    }
    if (hasHeader && !(reading == Reading::Extended ? header.readByGrammar(text) : header.read(text))) {
        text.close();
        return false;
    }
    // Exactly this word: "binary " with a blank after it is ascii, because values are not trimmed.
    text.setBinary(hasHeader && header.has("format", "binary"));
    if (reading == Reading::Extended && text.isBinary()) {
        const auto arch = header.entries().find("arch");
        text.setRawForm(arch == header.entries().end() ? RawForm() : rawFormOfArch(arch->second));
    }
    return true;
}

const std::string& FoamFile::entry(const char* key) const
{
    static const std::string NONE;
    const bool isMissing = reading == Reading::Extended && header.entries().count(key) == 0;
    return isMissing ? NONE : header.at(key);
}

namespace ListHeader {

bool open(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, const Messages& messages)
{
    if (!file.open(path)) {
        return file.text.reportError(messages.openFailed);
    }
    return file.entry("object") == objectName.toUtf8() || file.text.reportError(messages.wrongObject);
}

bool openWithOrWithoutHeader(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, const Messages& messages)
{
    if (file.hasHeader) {
        return open(file, path, objectName, messages);
    }
    return file.open(path) || file.text.reportError(messages.openFailed);
}

bool checkClass(const FoamFile& file, const char* className, const Messages& messages)
{
    return file.entry("class") == className || file.text.reportError(messages.wrongClass);
}

bool readCount(FoamFile& file, std::uint64_t bytesPerItem, int largest, const Messages& messages, int* count,
               char otherEnd)
{
    if (!file.text.readCount(count, otherEnd)) {
        return file.text.reportError(messages.noCount);
    }
    // Digits that overflowed come out negative. guard: list-count
    const bool isValid =
        *count >= 0 && *count <= largest && file.text.canHold(static_cast<std::uint64_t>(*count), bytesPerItem);
    return isValid || file.text.reportError(messages.badCount);
}

} // namespace ListHeader
