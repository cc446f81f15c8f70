#include "tests/image/reduce/simple_reduce.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>

namespace imgbasic {
namespace {

using Counts = std::map<SimpleColor, int64_t>;

SimpleColor Unpack(uint32_t word) {
    SimpleColor color{};
    for (size_t c = 0; c < 4 && word >> 24 != 0; ++c) {
        color[c] = static_cast<int>(word >> (8 * c) & 255);
    }
    return color;
}

SimpleColor Shifted(SimpleColor color, int shift) {
    for (int& value : color) {
        value >>= shift;
    }
    return color;
}

int Distance(const SimpleColor& a, const SimpleColor& b, size_t channels = 4) {
    int sum = 0;
    for (size_t c = 0; c < channels; ++c) {
        sum += (a[c] - b[c]) * (a[c] - b[c]);
    }
    return sum;
}

Counts CountColors(const SimpleImage& image, int shift) {
    Counts counts;
    for (const uint32_t pixel : image.pixels) {
        ++counts[Shifted(Unpack(pixel), shift)];
    }
    return counts;
}

/// A box is known by the colours in it.
struct Box {
    Counts colors;
    std::array<bool, 4> aside{};

    int64_t Pixels() const {
        int64_t pixels = 0;
        for (const auto& [color, count] : colors) {
            pixels += count;
        }
        return pixels;
    }
    std::map<int, int64_t> Levels(size_t channel) const {
        std::map<int, int64_t> levels;
        for (const auto& [color, count] : colors) {
            levels[color[channel]] += count;
        }
        return levels;
    }
};

struct Cut {
    size_t channel;
    int end;  ///< last level of the lower part
};

/// Below `lo` when the channel cannot be cut.
int LowerEnd(std::map<int, int64_t>& levels, int lo, int hi, int64_t n, int64_t m) {
    if (hi - lo == 1) {
        return levels[lo] < m || levels[hi] < m ? lo - 1 : lo;
    }
    int v = lo;
    int64_t before = 0;
    int64_t count = levels[v];
    while (count <= n >> 1) {
        before = count;
        count += levels[++v];
    }
    if (v == lo) {
        return count > n - m ? lo - 1 : v;
    }
    if (v == hi) {
        return before < m ? lo - 1 : v - 1;
    }
    return count <= n - m || before <= m ? v : v - 1;
}

std::optional<Cut> FindCut(Box& box, int64_t divisor) {
    for (const int64_t n = box.Pixels();;) {
        size_t channel = 4;
        int lo = 0;
        int hi = -1;
        for (const size_t c : {3U, 1U, 2U, 0U}) {
            const auto levels = box.Levels(c);
            if (!box.aside[c] && levels.rbegin()->first - levels.begin()->first > hi - lo) {
                channel = c;
                lo = levels.begin()->first;
                hi = levels.rbegin()->first;
            }
        }
        if (hi - lo < 1) {
            return std::nullopt;
        }
        auto levels = box.Levels(channel);
        const int end = LowerEnd(levels, lo, hi, n, n / divisor);
        int64_t lower = 0;
        for (int v = lo; v <= end; ++v) {
            lower += levels[v];
        }
        if (end >= lo && lower > 1 && n - lower > 1) {
            return Cut{channel, end};
        }
        box.aside[channel] = true;
    }
}

void Split(std::vector<Box>& boxes, size_t old, Cut cut) {
    Box upper;
    for (const auto& [color, count] : boxes[old].colors) {
        if (color[cut.channel] > cut.end) {
            upper.colors[color] = count;
        }
    }
    for (const auto& [color, count] : upper.colors) {
        boxes[old].colors.erase(color);
    }
    boxes.push_back(upper);
}

/// The boxes and, in `order`, their numbers in the order in which they give colours.
std::vector<Box> MakeBoxes(const Counts& coarse, int levels, std::vector<size_t>& order) {
    std::vector<Box> boxes{{coarse}};
    for (const int end : {0, levels - 2}) {  // transparent, then opaque pixels apart
        const auto alphas = boxes.back().Levels(3);
        if (alphas.begin()->first <= end && alphas.rbegin()->first > end) {
            Split(boxes, boxes.size() - 1, {3, end});
        }
    }
    order.resize(boxes.size());
    std::iota(order.begin(), order.end(), 0);
    const auto larger = [&](size_t a, size_t b) { return boxes[a].Pixels() > boxes[b].Pixels(); };
    std::ranges::stable_sort(order, larger);
    int64_t divisor = 4;
    for (int idle = 0; idle < 4;) {
        const size_t before = boxes.size();
        for (const size_t number : std::vector<size_t>(order)) {
            if (const auto cut = FindCut(boxes[number], divisor)) {
                order.push_back(boxes.size());
                Split(boxes, number, *cut);
                if (boxes.size() == 256) {
                    return boxes;
                }
            }
        }
        if (boxes.size() > before) {
            std::ranges::stable_sort(order, larger);
            idle = 0;
        } else {
            ++idle;
            divisor = std::min(divisor * 2, int64_t{1} << 40);
            for (Box& box : boxes) {
                box.aside = {};
            }
        }
    }
    return boxes;
}

/// 1 when the colour was not there yet.
int AddNew(SimplePalette& palette, const SimpleColor& color) {
    const bool isNew = std::ranges::find(palette, color) == palette.end();
    palette.insert(palette.end(), isNew ? 1 : 0, color);
    return isNew ? 1 : 0;
}

void AddCandidates(SimplePalette& palette, const Box& box, const Counts& colors, int shift,
                   int& spare) {
    Counts own;
    Box second;
    for (const auto& [color, count] : colors) {
        if (box.colors.contains(Shifted(color, shift))) {
            own[color] = count;
            second.colors[Shifted(color, shift - 1)] += count;
        }
    }
    const auto cut = FindCut(second, 4);
    const auto mean = [&](auto&& belongs) {
        SimpleColor result{};
        for (size_t c = 0; c < 4; ++c) {
            int64_t sum = 0;
            int64_t n = 0;
            for (const auto& [color, count] : own) {
                sum += belongs(color) ? color[c] * count : 0;
                n += belongs(color) ? count : 0;
            }
            result[c] = static_cast<int>((sum + n / 2) / n);
        }
        return result;
    };
    const auto lower = [&](const SimpleColor& color) {
        return color[cut->channel] >> (shift - 1) <= cut->end;
    };
    if (spare >= 1 && cut) {
        const int added = AddNew(palette, mean(lower));
        spare += 1 - added - AddNew(palette, mean(std::not_fn(lower)));
    } else {
        spare += 1 - AddNew(palette, mean([](const SimpleColor&) { return true; }));
    }
}

void Thin(SimplePalette& palette, size_t limit) {
    const size_t n = palette.size();
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::vector<size_t> nearest(n, n);  // n: not known
    std::vector<int> distance(n);
    const auto gray = [&](size_t i) { return Distance(palette[i], {127, 127, 127, 127}); };
    while (order.size() > limit) {
        for (size_t i = 0; i < n; ++i) {
            for (size_t j = 0, end = nearest[i] == n ? n : 0; j < end; ++j) {
                const int d = Distance(palette[i], palette[j]);
                if (i != j && (nearest[i] == n || d < distance[i])) {
                    nearest[i] = j;
                    distance[i] = d;
                }
            }
        }
        std::ranges::stable_sort(order, [&](size_t a, size_t b) {
            return distance[a] != distance[b] ? distance[a] > distance[b] : gray(a) > gray(b);
        });
        std::ranges::replace(nearest, order.back(), n);
        order.pop_back();
    }
    SimplePalette kept;
    std::ranges::sort(order);
    std::ranges::transform(order, std::back_inserter(kept), [&](size_t i) { return palette[i]; });
    palette = kept;
}

int Apart(int cell, int other) {
    int apart = 0;
    for (int bit = 0; bit < 12; bit += 3) {
        apart = std::max(apart, std::abs((cell >> bit & 7) - (other >> bit & 7)));
    }
    return apart;
}

class Nearest {
  public:
    explicit Nearest(const SimplePalette& palette) : palette_(palette) {
        for (size_t i = 0; i < palette.size(); ++i) {
            cells_[full_ ? 0 : CellOf(palette[i])].push_back(i);
        }
    }

    size_t operator()(const SimpleColor& query) {
        const int cell = full_ ? 0 : CellOf(query);
        auto& list = lists_[cell];
        if (list.empty()) {
            list = Candidates(cell);
        }
        const size_t channels = translucent_ || (full_ && transparent_) ? 4 : 3;
        size_t best = 0;
        std::array<int, 3> bestRank{0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF};
        for (const size_t i : list) {
            const SimpleColor& entry = palette_[i];
            int spread = 0;
            for (size_t c = 0; c < 4; ++c) {
                spread += std::abs(query[c] - entry[c]);
            }
            const int alpha = transparent_ && !translucent_ ? std::abs(query[3] - entry[3]) : 0;
            const std::array<int, 3> rank{alpha, Distance(query, entry, channels), spread};
            if (rank < bestRank) {
                best = i;
                bestRank = rank;
                if (rank[1] == 0) {
                    break;
                }
            }
        }
        return best;
    }

  private:
    static int CellOf(const SimpleColor& c) {
        return c[3] >> 5 << 9 | c[2] >> 5 << 6 | c[1] >> 5 << 3 | c[0] >> 5;
    }
    std::vector<size_t> Candidates(int cell) {
        std::vector<size_t> list = cells_[cell];
        for (int radius = 1; list.empty() || radius == 1; ++radius) {
            for (const auto& [other, entries] : cells_) {
                if (other != cell && Apart(cell, other) <= radius) {
                    list.insert(list.end(), entries.begin(), entries.end());
                }
            }
        }
        return list;
    }
    bool Has(bool (*predicate)(const SimpleColor&)) const {
        return std::ranges::any_of(palette_, predicate);
    }

    const SimplePalette& palette_;
    bool full_ = palette_.size() < 17;
    bool transparent_ = Has([](const SimpleColor& color) { return color[3] == 0; });
    bool translucent_ = Has([](const SimpleColor& color) { return color[3] % 255 != 0; });
    std::map<int, std::vector<size_t>> cells_;
    std::map<int, std::vector<size_t>> lists_;
};

constexpr int kMatrices[9][4][4] = {
    {},
    {{0, 1, 0, 1}, {1, 0, 1, 0}, {0, 1, 0, 1}, {1, 0, 1, 0}},
    {{0, 2, 0, 2}, {3, 1, 3, 1}, {0, 2, 0, 2}, {3, 1, 3, 1}},
    {{0, 4, 1, 5}, {6, 2, 7, 3}, {1, 5, 0, 4}, {7, 3, 6, 2}},
    {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}},
    {{0, 17, 4, 21}, {25, 8, 29, 12}, {6, 23, 2, 19}, {31, 14, 27, 10}},
    {{0, 34, 8, 42}, {50, 17, 59, 25}, {13, 46, 4, 38}, {63, 29, 55, 21}},
    {{0, 68, 17, 87}, {102, 34, 119, 51}, {25, 93, 8, 76}, {127, 59, 110, 42}},
    {{0, 136, 34, 170}, {204, 68, 238, 102}, {51, 187, 17, 153}, {255, 119, 221, 85}}};

SimpleColor Ordered(const SimpleColor& color, const SimpleColor& entry, size_t x, size_t y) {
    SimpleColor dithered = color;
    for (size_t c = 0; c < 4; ++c) {
        int n = 0;
        while (std::abs(color[c] - entry[c]) >> n != 0) {
            ++n;
        }
        const int half = n == 0 ? 0 : 1 << (n - 1);
        dithered[c] = std::clamp(color[c] + kMatrices[n][y % 4][x % 4] - half, 0, 255);
    }
    return dithered;
}

void Diffuse(Nearest& nearest, const SimplePalette& palette, const SimpleImage& image,
             bool accumulate, std::vector<uint8_t>& indices) {
    const auto width = static_cast<size_t>(image.width);
    std::vector<SimpleColor> above(width + 2);  // a zero in front and behind
    for (size_t y = 0; y * width < indices.size(); ++y) {
        std::vector<SimpleColor> errors(width + 2);
        const size_t step = y % 2 == 0 ? 1 : static_cast<size_t>(-1);
        size_t x = y % 2 == 0 ? 1 : width;
        for (size_t i = 0; i < width; ++i, x += step) {
            const size_t pixel = y * width + x - 1;
            const SimpleColor q = Unpack(image.pixels[pixel]);
            SimpleColor v = q;
            for (size_t c = 0; c < 4; ++c) {
                v[c] += (5 * above[x][c]) >> 4;
                v[c] += (7 * errors[x - step][c]) >> 4;
                v[c] += (3 * above[x - step][c]) >> 4;
                v[c] += above[x + step][c] >> 4;
                v[c] = std::clamp(v[c], 0, 255);
            }
            const size_t k = nearest(v);
            indices[pixel] = static_cast<uint8_t>(k);
            for (size_t c = 0; c < 4; ++c) {
                errors[x][c] = (accumulate ? v : q)[c] - palette[k][c];
            }
        }
        above = errors;
    }
}

}  // namespace

SimplePalette SimpleQuantize(const SimpleImage& image, int countSpec) {
    const int limit = countSpec < 0 ? std::min(-countSpec, 256) : 1 << std::min(countSpec, 8);
    const int precision = countSpec >= 0 ? std::min(countSpec, 8) : limit < 17 ? 4 : 8;
    SimplePalette palette;
    for (const uint32_t pixel : image.pixels) {
        AddNew(palette, Unpack(pixel));
    }
    if (palette.size() <= static_cast<size_t>(limit)) {
        return palette;
    }
    palette.clear();
    const size_t threshold = precision == 8 ? 64 : (size_t{1} << precision) / 2;
    int shift = precision == 8 ? 5 : 6;
    Counts coarse = CountColors(image, shift);
    while (shift >= 5 && coarse.size() <= threshold) {
        coarse = CountColors(image, --shift);
    }
    std::vector<size_t> order;
    const std::vector<Box> boxes = MakeBoxes(coarse, 256 >> shift, order);
    const Counts colors = CountColors(image, 0);
    int spare = 256 - static_cast<int>(boxes.size());
    for (const size_t number : order) {
        AddCandidates(palette, boxes[number], colors, shift, spare);
    }
    Thin(palette, static_cast<size_t>(limit));
    return palette;
}

SimplePalette SimpleGraduate(const SimpleImage& image, int target) {
    SimpleImage copy = image;
    SimplePalette palette = SimpleQuantize(copy, -256);
    while (static_cast<int>(palette.size()) > target) {
        const auto indices = SimpleMap(palette, image, 0);
        for (size_t i = 0; i < indices.size(); ++i) {
            const SimpleColor& c = palette[indices[i]];
            copy.pixels[i] = static_cast<uint32_t>(c[3]) << 24 |
                             static_cast<uint32_t>(c[2] << 16 | c[1] << 8 | c[0]);
        }
        palette = SimpleQuantize(copy, -std::max(static_cast<int>(palette.size()) / 2, target));
    }
    return palette;
}

std::vector<uint8_t> SimpleMap(const SimplePalette& palette, const SimpleImage& image,
                               int ditherType) {
    Nearest nearest(palette);
    std::vector<uint8_t> indices(image.pixels.size());
    if (ditherType >= 2) {
        Diffuse(nearest, palette, image, ditherType == 3, indices);
        return indices;
    }
    for (size_t i = 0; i < indices.size(); ++i) {
        const auto width = static_cast<size_t>(image.width);
        const SimpleColor color = Unpack(image.pixels[i]);
        size_t k = nearest(color);
        if (ditherType == 1) {
            k = nearest(Ordered(color, palette[k], i % width, i / width));
        }
        indices[i] = static_cast<uint8_t>(k);
    }
    return indices;
}

}  // namespace imgbasic
