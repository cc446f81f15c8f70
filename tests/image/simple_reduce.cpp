#include "tests/image/simple_reduce.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>

namespace imgbasic {
namespace {

SimpleColor Unpack(uint32_t word) {
    const auto channel = [&](int c) { return static_cast<int>(word >> (8 * c) & 255); };
    return channel(3) == 0 ? SimpleColor{}
                           : SimpleColor{channel(0), channel(1), channel(2), channel(3)};
}

uint32_t Pack(const SimpleColor& c) {
    return static_cast<uint32_t>(c[0] | c[1] << 8 | c[2] << 16) | static_cast<uint32_t>(c[3]) << 24;
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

using Counts = std::map<SimpleColor, int64_t>;

Counts CountColors(const SimpleImage& image, int shift) {
    Counts counts;
    for (const uint32_t pixel : image.pixels) {
        ++counts[Shifted(Unpack(pixel), shift)];
    }
    return counts;
}

struct Box {
    SimpleColor min{0, 0, 0, 0};
    SimpleColor max{255, 255, 255, 255};
    std::array<std::map<int, int64_t>, 4> levels;
    int64_t pixels = 0;
    std::array<bool, 4> aside{};

    bool Holds(const SimpleColor& color) const {
        for (size_t c = 0; c < 4; ++c) {
            if (color[c] < min[c] || color[c] > max[c]) {
                return false;
            }
        }
        return true;
    }

    void Measure(const Counts& counts) {
        levels = {};
        pixels = 0;
        for (const auto& [color, count] : counts) {
            if (Holds(color)) {
                pixels += count;
                for (size_t c = 0; c < 4; ++c) {
                    levels[c][color[c]] += count;
                }
            }
        }
        for (size_t c = 0; c < 4; ++c) {
            min[c] = levels[c].empty() ? 256 : levels[c].begin()->first;
            max[c] = levels[c].empty() ? -1 : levels[c].rbegin()->first;
        }
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
    for (;;) {
        std::optional<size_t> channel;
        for (const size_t c : {3U, 1U, 2U, 0U}) {
            if (!box.aside[c] &&
                (!channel || box.max[c] - box.min[c] > box.max[*channel] - box.min[*channel])) {
                channel = c;
            }
        }
        if (!channel || box.max[*channel] - box.min[*channel] < 1) {
            return std::nullopt;
        }
        auto& levels = box.levels[*channel];
        const int lo = box.min[*channel];
        const int end = LowerEnd(levels, lo, box.max[*channel], box.pixels, box.pixels / divisor);
        int64_t lower = 0;
        for (int v = lo; v <= end; ++v) {
            lower += levels[v];
        }
        if (end >= lo && lower > 1 && box.pixels - lower > 1) {
            return Cut{*channel, end};
        }
        box.aside[*channel] = true;
    }
}

void Split(std::vector<Box>& boxes, size_t old, Cut cut, const Counts& coarse) {
    Box upper = boxes[old];
    upper.aside = {};
    upper.min[cut.channel] = cut.end + 1;
    boxes[old].max[cut.channel] = cut.end;
    boxes[old].Measure(coarse);
    upper.Measure(coarse);
    boxes.push_back(upper);
}

/// The boxes and, in `order`, their numbers in the order in which they give colours.
std::vector<Box> MakeBoxes(const Counts& coarse, int levels, std::vector<size_t>& order) {
    std::vector<Box> boxes(1);
    boxes[0].Measure(coarse);
    if (boxes[0].min[3] == 0 && boxes[0].max[3] >= 1) {
        Split(boxes, 0, {3, 0}, coarse);
    }
    const Box& last = boxes.back();
    if (last.max[3] == levels - 1 && last.min[3] != levels - 1) {
        Split(boxes, boxes.size() - 1, {3, levels - 2}, coarse);
    }
    order.resize(boxes.size());
    std::iota(order.begin(), order.end(), 0);
    const auto sort = [&] {
        std::stable_sort(order.begin(), order.end(),
                         [&](size_t a, size_t b) { return boxes[a].pixels > boxes[b].pixels; });
    };
    sort();
    int64_t divisor = 4;
    for (int idle = 0;;) {
        const size_t before = boxes.size();
        for (const size_t number : std::vector<size_t>(order)) {
            if (const auto cut = FindCut(boxes[number], divisor)) {
                order.push_back(boxes.size());
                Split(boxes, number, *cut, coarse);
                if (boxes.size() == 256) {
                    return boxes;
                }
            }
        }
        if (boxes.size() > before) {
            sort();
            idle = 0;
        } else if (idle > 2) {
            return boxes;
        } else {
            ++idle;
            divisor = std::min(divisor * 2, int64_t{1} << 40);
            for (Box& box : boxes) {
                box.aside = {};
            }
        }
    }
}

struct Sum {
    std::array<int64_t, 4> total{};
    int64_t count = 0;

    void Add(const SimpleColor& color, int64_t pixels) {
        for (size_t c = 0; c < 4; ++c) {
            total[c] += color[c] * pixels;
        }
        count += pixels;
    }
    SimpleColor Mean() const {
        SimpleColor mean{};
        for (size_t c = 0; c < 4; ++c) {
            mean[c] = static_cast<int>((total[c] + count / 2) / count);
        }
        return mean;
    }
};

bool AddNew(SimplePalette& palette, const SimpleColor& color) {
    const bool isNew = std::find(palette.begin(), palette.end(), color) == palette.end();
    if (isNew) {
        palette.push_back(color);
    }
    return isNew;
}

void AddCandidates(SimplePalette& palette, const Box& box, const Counts& colors, int shift,
                   int& spare) {
    Counts own;
    Counts fine;
    for (const auto& [color, count] : colors) {
        if (box.Holds(Shifted(color, shift))) {
            own[color] = count;
            fine[Shifted(color, shift - 1)] += count;
        }
    }
    Box second;
    second.Measure(fine);
    const auto cut = FindCut(second, 4);
    Sum all;
    Sum lower;
    Sum upper;
    for (const auto& [color, count] : own) {
        all.Add(color, count);
        if (cut) {
            (color[cut->channel] >> (shift - 1) <= cut->end ? lower : upper).Add(color, count);
        }
    }
    if (spare >= 1 && lower.count > 0 && upper.count > 0) {
        spare += 1 - AddNew(palette, lower.Mean()) - AddNew(palette, upper.Mean());
    } else if (!AddNew(palette, all.Mean())) {
        ++spare;
    }
}

void Thin(SimplePalette& palette, size_t limit) {
    const size_t n = palette.size();
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::vector<int> nearest(n, -1);
    std::vector<int> distance(n);
    const auto gray = [&](size_t i) { return Distance(palette[i], {127, 127, 127, 127}); };
    while (order.size() > limit) {
        for (size_t i = 0; i < n; ++i) {
            for (size_t j = 0, open = nearest[i] == -1; open != 0 && j < n; ++j) {
                const int d = Distance(palette[i], palette[j]);
                if (i != j && (nearest[i] == -1 || d < distance[i])) {
                    nearest[i] = static_cast<int>(j);
                    distance[i] = d;
                }
            }
        }
        std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
            return distance[a] != distance[b] ? distance[a] > distance[b] : gray(a) > gray(b);
        });
        std::replace(nearest.begin(), nearest.end(), static_cast<int>(order.back()), -1);
        order.pop_back();
    }
    std::sort(order.begin(), order.end());
    SimplePalette kept;
    for (const size_t i : order) {
        kept.push_back(palette[i]);
    }
    palette = kept;
}

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

int Ordered(SimpleNearest& nearest, const SimplePalette& palette, SimpleColor color, size_t x,
            size_t y) {
    const int k = nearest(color);
    const SimpleColor flat = color;
    for (size_t c = 0; c < 4; ++c) {
        const int d = std::abs(color[c] - palette[static_cast<size_t>(k)][c]);
        int n = 0;
        while (d >> n != 0) {
            ++n;
        }
        if (n != 0) {
            color[c] = std::clamp(color[c] + kMatrices[n][y % 4][x % 4] - (1 << (n - 1)), 0, 255);
        }
    }
    return color != flat ? nearest(color) : k;
}

void Diffuse(SimpleNearest& nearest, const SimplePalette& palette, const SimpleImage& image,
             bool accumulate, std::vector<uint8_t>& indices) {
    const int w = image.width;
    std::vector<SimpleColor> above(static_cast<size_t>(w));
    for (int y = 0; y < image.height; ++y) {
        std::vector<SimpleColor> errors(static_cast<size_t>(w));
        const int step = y % 2 == 0 ? 1 : -1;
        for (int i = 0; i < w; ++i) {
            const int x = step > 0 ? i : w - 1 - i;
            const auto at = [&](const std::vector<SimpleColor>& row, int column, size_t c) {
                return column < 0 || column >= w ? 0 : row[static_cast<size_t>(column)][c];
            };
            const auto pixel =
                static_cast<size_t>(y) * static_cast<size_t>(w) + static_cast<size_t>(x);
            const SimpleColor q = Unpack(image.pixels[pixel]);
            SimpleColor v = q;
            for (size_t c = 0; c < 4; ++c) {
                v[c] += (5 * at(above, x, c)) >> 4;
                v[c] += (7 * at(errors, x - step, c)) >> 4;
                v[c] += (3 * at(above, x - step, c)) >> 4;
                v[c] += at(above, x + step, c) >> 4;
                v[c] = std::clamp(v[c], 0, 255);
            }
            const int k = nearest(v);
            indices[pixel] = static_cast<uint8_t>(k);
            for (size_t c = 0; c < 4; ++c) {
                errors[static_cast<size_t>(x)][c] =
                    (accumulate ? v : q)[c] - palette[static_cast<size_t>(k)][c];
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
    const int bounded = std::max(target, 1);
    SimpleImage copy = image;
    SimplePalette palette = SimpleQuantize(copy, -256);
    while (palette.size() > static_cast<size_t>(bounded)) {
        const auto indices = SimpleMap(palette, image, 0);
        for (size_t i = 0; i < indices.size(); ++i) {
            copy.pixels[i] = Pack(palette[indices[i]]);
        }
        palette = SimpleQuantize(copy, -std::max(static_cast<int>(palette.size()) / 2, bounded));
    }
    return palette;
}

SimpleNearest::SimpleNearest(const SimplePalette& palette) : palette_(palette) {
    const auto has = [&](auto&& predicate) {
        return std::any_of(palette.begin(), palette.end(),
                           [&](const SimpleColor& color) { return predicate(color[3]); });
    };
    alphaMode_ = has([](int a) { return a != 0 && a != 255; }) ? 1
                 : has([](int a) { return a == 0; })           ? -1
                                                               : 0;
    for (size_t i = 0; i < palette.size(); ++i) {
        const SimpleColor cell = Shifted(palette[i], 5);
        own_[cell[3] << 9 | cell[2] << 6 | cell[1] << 3 | cell[0]].push_back(static_cast<int>(i));
    }
}

std::vector<int> SimpleNearest::Candidates(int cell) const {
    std::vector<int> list;
    if (const auto own = own_.find(cell); own != own_.end()) {
        list = own->second;
    }
    for (int radius = 1; list.empty() || radius == 1; ++radius) {
        for (const auto& [other, entries] : own_) {
            const auto apart = [other = other, cell](int bit) {
                return std::abs((other >> bit & 7) - (cell >> bit & 7));
            };
            if (other != cell && std::max({apart(0), apart(3), apart(6), apart(9)}) <= radius) {
                list.insert(list.end(), entries.begin(), entries.end());
            }
        }
    }
    return list;
}

int SimpleNearest::operator()(const SimpleColor& query) {
    const bool full = palette_.size() < 17;
    const SimpleColor top = Shifted(query, 5);
    const int cell = full ? 0 : top[3] << 9 | top[2] << 6 | top[1] << 3 | top[0];
    auto& list = lists_[cell];
    if (list.empty() && full) {
        list.resize(palette_.size());
        std::iota(list.begin(), list.end(), 0);
    } else if (list.empty()) {
        list = Candidates(cell);
    }
    const size_t channels = alphaMode_ == 1 || (full && alphaMode_ == -1) ? 4 : 3;
    int best = -1;
    int bestD = 0x7FFFFFFF;
    int bestA = 0x7FFFFFFF;
    const auto spread = [&](int i) {
        int sum = 0;
        for (size_t c = 0; c < 4; ++c) {
            sum += std::abs(query[c] - palette_[static_cast<size_t>(i)][c]);
        }
        return sum;
    };
    for (const int i : list) {
        const SimpleColor& entry = palette_[static_cast<size_t>(i)];
        const int d = Distance(query, entry, channels);
        const int a = std::abs(query[3] - entry[3]);
        if (alphaMode_ == -1 && a > bestA) {
            continue;
        }
        if ((alphaMode_ == -1 && a < bestA) || d < bestD ||
            (d == bestD && spread(i) < spread(best))) {
            best = i;
            bestD = d;
            bestA = a;
            if (d == 0) {
                break;
            }
        }
    }
    return best;
}

std::vector<uint8_t> SimpleMap(const SimplePalette& palette, const SimpleImage& image,
                               int ditherType) {
    SimpleNearest nearest(palette);
    std::vector<uint8_t> indices(image.pixels.size());
    if (ditherType >= 2) {
        Diffuse(nearest, palette, image, ditherType == 3, indices);
        return indices;
    }
    const auto width = static_cast<size_t>(image.width);
    for (size_t i = 0; i < indices.size(); ++i) {
        const SimpleColor color = Unpack(image.pixels[i]);
        indices[i] = static_cast<uint8_t>(
            ditherType == 0 ? nearest(color)
                            : Ordered(nearest, palette, color, i % width, i / width));
    }
    return indices;
}

}  // namespace imgbasic
