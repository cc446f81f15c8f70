#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lib/image/palette/color_word.h"

namespace imgbasic {

/// The colours whose channels are each in [floor, floor + length].
struct CellRange {
    std::array<int, kColorChannels> floor;
    std::array<int, kColorChannels> length;
};

/// One of the entries that are compared with the colours of a cell.
struct Candidate {
    uint8_t index;   ///< of the palette entry
    uint32_t color;  ///< without the channels that are no part of the distance
};

/// Whether the rival b drives the entry e out: whether it is closer to every colour of the cell.
///
/// Per channel, with c the middle of the cell and q = c + t the colour, t from -length / 2 to
/// length / 2:
///
///      (q - b)^2 - (q - e)^2  =  (c - b)^2 - (c - e)^2  +  2 t (e - b)
///
/// which is greatest at one of the ends, where the last term is length * |e - b|. Channels are
/// independent of each other, so the greatest value of the whole difference of squared distances
/// is the sum of theirs. When it is negative, e is never the closest in the cell, nor as close as
/// the closest, nor at distance zero. Whatever e drives out is driven out by b as well, so that it
/// does not matter in what order entries go.
bool DrivesOut(uint32_t rival, uint32_t entry, const CellRange& cell);

/// Drops candidates, of at most a whole palette, that others drive out, until at most `enough` are
/// left or hardly more can be found. Those that stay keep their order.
void DropHopeless(std::vector<Candidate>& candidates, const CellRange& cell, size_t enough);

}  // namespace imgbasic
