// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Parallel.h"
#include "foamfile/GrowingBuffer.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

/// Parses the text of a field list in several pieces at once, ahead of the walk through the list.
///
/// The sequential walk decides every unusual case: the pieces take what comes before it, and the walk goes on from
/// there. A piece counts if it was parsed to its end without doubt, every piece before it counts, and the list does not
/// end in it. So the walk sees the end of the list, the text after it, and each text that is not a number, and the
/// outcome is the same as if only the walk had read the list.
class FieldPieces
{
public:
    /// A run of whole lines and the values parsed from it.
    struct Piece
    {
        const char* begin = nullptr;
        const char* limit = nullptr; ///< start of the next piece
        const char* stop = nullptr;  ///< where parsing ended
        GrowingBuffer<double> values;
        std::size_t count = 0;
        std::size_t place = 0; ///< of its values among those of the text
        bool isClean = false;

        /// Where `number` further values go.
        double* room(std::size_t number)
        {
            if (count + number > values.capacity()) {
                values.grow(count + VALUES_STEP, count);
            }
            return values.data() + count;
        }
    };

    /// Parses values from the start of the text, fewer than `room`.
    ///
    /// @param end       of the text; its NUL, or the start of a line
    /// @param readPiece parses a piece, `void(Piece*, const char* end)`: sets `count`, `stop` and `isClean`, and does
    ///                  not look at lines after the piece
    /// @param beside    a call that runs beside the parsing: reading what comes next
    /// @param[out] count values stored at `target`
    /// @return where the walk goes on
    template <typename ReadPiece, typename Beside>
    const char* read(const char* begin, const char* end, std::size_t room, double* target, const ReadPiece& readPiece,
                     const Beside& beside, std::size_t* count)
    {
        *count = 0;
        if (!pays(end - begin, room)) {
            return begin;
        }
        const char* const last = endOfPieces(begin, end, room);
        cut(begin, last);
        if (m_pieces.front().limit == last) {
            // A single line.
            return begin;
        }
        // These calls belong to the work on one part: while this thread waits for them, it must not take up another
        // part. Each fills its own piece.
        dvf::isolated([&] {
            dvf::invokeAll([&] { beside(); },
                           [&] {
                               dvf::forLargeItems(PIECES, [&](const dvf::IndexRange& range) {
                                   for (std::size_t i = range.begin(); i != range.end(); ++i) {
                                       readPiece(&m_pieces[i], end);
                                   }
                               });
                           });
        });
        std::size_t used = 0;
        const char* stop = begin;
        // guard: pieces-room
        for (; used < PIECES && m_pieces[used].isClean && *count + m_pieces[used].count < room; ++used) {
            m_pieces[used].place = *count;
            *count += m_pieces[used].count;
            stop = m_pieces[used].stop;
        }
        // Places never overlap: they are sums over the pieces that are complete here.
        dvf::isolated([&] {
            dvf::forEachIndex(used, [&](std::size_t i) {
                const Piece& piece = m_pieces[i];
                if (piece.count != 0) {
                    std::memcpy(target + piece.place, piece.values.data(), piece.count * sizeof(double));
                }
            });
        });
        return stop;
    }

    template <typename ReadPiece>
    const char* read(const char* begin, const char* end, std::size_t room, double* target, const ReadPiece& readPiece,
                     std::size_t* count)
    {
        return read(
            begin, end, room, target, readPiece, [] {}, count);
    }

    /// Whether pieces of so much text for so many values are worth their tasks. With one thread there is nothing to
    /// gain.
    static bool pays(std::ptrdiff_t textSize, std::size_t room)
    {
        return textSize >= LEAST_TEXT && room >= LEAST_VALUES && dvf::hasSeveralThreads();
    }

private:
    /// More than a small machine has cores, so that a core that starts late still finds work.
    static constexpr std::size_t PIECES = 8;
    /// Below this the tasks cost more than they gain.
    static constexpr std::ptrdiff_t LEAST_TEXT = 65536;
    static constexpr std::size_t LEAST_VALUES = 4096;
    /// Characters of text per value, line feed and brackets included; seldom more.
    static constexpr std::size_t TEXT_OF_VALUE = 32;
    /// Values by which a piece grows: about what its text holds.
    static constexpr std::size_t VALUES_STEP = 16384;

    /// Where the last piece ends: at the first NUL, because the walk stops there, and after a line of about the text
    /// that the values can take. The text after that is not searched, since each of many short lists would search it
    /// again.
    static const char* endOfPieces(const char* begin, const char* end, std::size_t room)
    {
        const auto most = std::min(room, static_cast<std::size_t>(end - begin)) * TEXT_OF_VALUE;
        const auto length = std::min(most, static_cast<std::size_t>(end - begin));
        if (const void* const nul = std::memchr(begin, '\0', length)) {
            return static_cast<const char*>(nul);
        }
        const char* last = begin + length;
        while (last != end && last > begin && last[-1] != '\n') {
            --last;
        }
        return last;
    }

    /// Cuts the text after line ends into pieces of about the same length.
    void cut(const char* begin, const char* end)
    {
        const std::ptrdiff_t length = (end - begin) / static_cast<std::ptrdiff_t>(PIECES);
        const char* next = begin;
        for (std::size_t i = 0; i < PIECES; ++i) {
            Piece& piece = m_pieces[i];
            // Until its task has run, nothing that is left of an earlier text may count.
            piece.begin = piece.stop = next;
            piece.count = 0;
            piece.isClean = false;
            // A long line may reach beyond the next cut; the piece after it is then empty.
            const char* limit = std::max(next, begin + length * static_cast<std::ptrdiff_t>(i + 1));
            if (i + 1 == PIECES || limit >= end || !TokenScanner::skipPast(limit, '\n')) {
                limit = end;
            }
            piece.limit = limit;
            next = limit;
        }
    }

    std::array<Piece, PIECES> m_pieces;
};
