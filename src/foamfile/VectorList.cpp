// SPDX-License-Identifier: MIT
#include "foamfile/VectorList.h"

#include "LibCore/LargePages.h"
#include "LibCore/Limits.h"
#include "foamfile/ChunkPasses.h"
#include "foamfile/TokenScanner.h"
#include "records/Components.h"

#include <algorithm>

namespace {

using TokenScanner::ComponentEnd;

/// Doubles by which the values of a slot grow: more than the usual chunk holds.
constexpr std::size_t VALUES_STEP = 72000;
/// Chunks of one pass.
constexpr std::size_t VECTOR_SLOTS = 4;

struct VectorSlot : ChunkSlot
{
    GrowingBuffer<double> values;
    std::size_t count = 0;
    double* target = nullptr;

    void parse()
    {
        count = 0;
        if (!more) {
            return;
        }
        const char* p = chunk.begin;
        while (TokenScanner::skipPast(p, '(')) {
            // guard: vector-slot
            if (count + VECTOR_COMPONENTS > values.capacity()) {
                values.grow(count + VALUES_STEP, count);
            }
            if (TokenScanner::scanVector<ComponentEnd::Delimiter>(p, chunk.end, VECTOR_COMPONENTS,
                                                                  values.data() + count) < VECTOR_COMPONENTS) {
                return;
            }
            count += VECTOR_COMPONENTS;
        }
    }
};

/// The target of the passes.
class VectorTarget
{
public:
    VectorTarget(TextSource& text, std::vector<double>* values) : m_text(text), m_values(values) {}

    bool isFull() const { return m_done == m_values->size(); }
    std::size_t done() const { return m_done; }

    bool fill(VectorSlot* slot) { return m_text.nextChunk(&slot->buffer, &slot->chunk); }

    void place(VectorSlot* slot)
    {
        // A file with more vectors than it promised must not write beyond the target. guard: points-parallel
        slot->count = std::min(slot->count, m_values->size() - m_done);
        slot->target = m_values->data() + m_done;
        m_done += slot->count;
    }

    void makeRoom() const {}
    void copy(const VectorSlot& slot) const { std::copy_n(slot.values.data(), slot.count, slot.target); }

private:
    TextSource& m_text;
    std::vector<double>* m_values;
    std::size_t m_done = 0;
};

} // namespace

bool VectorList::readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open vector field file. File basename is %1",
        .wrongObject = "Unexpected object in vector field file. File basename is %1",
        .wrongClass = "Unexpected class in vector field file. File basename is %1",
        .noCount = "Failed to read number of items in vector field file. File basename is %1",
        .badCount = "Invalid number of items in vector field file. File basename is %1"};
    if (!ListHeader::openWithOrWithoutHeader(file, path, objectName, MESSAGES) ||
        (file.hasHeader && !ListHeader::checkClass(file, "vectorField", MESSAGES))) {
        return false;
    }
    int count = 0;
    if (!ListHeader::readCount(file, VECTOR_COMPONENTS * dvf::limits::BYTES_PER_NUMBER, dvf::limits::LIST_COUNT,
                               MESSAGES, &count)) {
        return false;
    }
    TextSource& text = file.text;
    dvf::reserveLarge(values, VECTOR_COMPONENTS * static_cast<std::size_t>(count));
    values->resize(VECTOR_COMPONENTS * static_cast<std::size_t>(count));
    if (count == 0) {
        text.close();
        return true;
    }
    if (!text.skipToList(values->size() * text.rawForm().realSize)) {
        return false;
    }
    // guard: points-binary
    const std::size_t found =
        text.isBinary() ? text.readRawReals(values->data(), values->size()) : readPar(text, values);
    const bool isWhole = found == values->size();
    if (!isWhole) {
        text.reportShortList(static_cast<std::size_t>(count), found / VECTOR_COMPONENTS);
    }
    text.close();
    return isWhole || !text.isBinary();
}

std::size_t VectorList::readPar(TextSource& text, std::vector<double>* values)
{
    VectorTarget target(text, values);
    readInPasses<VectorSlot, VECTOR_SLOTS>(&target);
    return target.done();
}
