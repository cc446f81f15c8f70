#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lib/image/resample/resample.h"

namespace imgbasic {

/// What the kernels must draw, step by step and pixel by pixel: the oracle of their tests.
/// For finite rectangles of ordinary size.
struct SimpleResample {
    enum Kernel { Nearest, Average, Bilinear };

    /// One direction: the source and destination rectangles and, for the column (or row) being
    /// drawn, its coverage and the sums of coverages without and with it.
    struct Axis {
        double s, sLength, d, dLength, sLimit, dLimit;
        double cover = 0, before = 0, after = 0;

        bool IsEmpty() const { return sLength < 1e-6 || dLength < 1e-6; }

        bool Clip() {
            if (IsEmpty()) {
                return false;
            }
            if (s < 0) {
                const double c = -s / sLength * dLength;
                sLength = sLength - s, dLength = dLength - c, d = d + c, s = 0;
            }
            if (IsEmpty()) {
                return false;
            }
            if (s + sLength > sLimit) {
                const double rest = sLimit - s;
                dLength = rest / sLength * dLength, sLength = rest;
            }
            if (IsEmpty()) {
                return false;
            }
            if (d < 0) {
                const double c = -d / dLength * sLength;
                sLength = sLength - c, dLength = dLength - d, s = s + c, d = 0;
            }
            if (d + dLength > dLimit) {
                const double rest = dLimit - d;
                sLength = rest / dLength * sLength, dLength = rest;
            }
            return true;
        }

        int Begin() const { return Floor(d); }
        int End() const { return Ceil(d + dLength); }
        void Enter(int i) {
            cover = i - d < 0 ? i - d + 1 : std::min(d + dLength - i, 1.0);
            before = i == Begin() ? 0 : after;
            after = before + cover;
        }
        double At(double sum) const { return sum * sLength * (1 / dLength) + s; }
        double Centre() const { return (before + after) * sLength * (0.5 / dLength) + s; }
        double Weight(int i) const {
            return i - At(before) < 0 ? i - At(before) + 1 : std::min(At(after) - i, 1.0);
        }
    };

    Kernel kernel;
    int32_t boundary;
    bool fade;
    ResampleTarget d;
    ResampleSource s;
    PixelRect clip;
    double A = 0, C[3] = {}, W = 0, I = 0;

    void Draw() {
        const auto length = [](double v, int size) { return v < 0 ? size : v; };
        Axis x{s.rect.x,     length(s.rect.width, s.width), d.rect.x,
               d.rect.width, static_cast<double>(s.width),  static_cast<double>(d.width)};
        Axis y{s.rect.y,      length(s.rect.height, s.height), d.rect.y,
               d.rect.height, static_cast<double>(s.height),   static_cast<double>(d.height)};
        if (clip.IsEmpty() || !x.Clip() || !y.Clip() || x.IsEmpty()) {
            return;
        }
        clip = {std::max(clip.left, 0), std::max(clip.top, 0), std::min(clip.right, s.width),
                std::min(clip.bottom, s.height)};
        for (int j = y.Begin(); j < y.End(); ++j) {
            y.Enter(j);
            for (int i = x.Begin(); i < x.End(); ++i) {
                x.Enter(i);
                A = C[0] = C[1] = C[2] = W = I = 0;
                RGBA16& pixel = d.pixels[int64_t{j} * d.width + i];
                kernel == Nearest   ? DrawNearest(pixel, x, y)
                : kernel == Average ? DrawAverage(pixel, x, y)
                                    : DrawBilinear(pixel, x, y);
            }
        }
    }

    static int Floor(double v) { return static_cast<int>(std::floor(v)); }
    static int Ceil(double v) { return static_cast<int>(std::ceil(v)); }

    bool InClip(int x, int y) const {
        return clip.left <= x && x < clip.right && clip.top <= y && y < clip.bottom;
    }

    const RGBA16& At(int x, int y) const { return s.pixels[int64_t{y} * s.width + x]; }

    void Add(const RGBA16& pixel, double w) {
        if (pixel.a != 0) {
            A = A + pixel.a * w / 65280;
            C[0] = C[0] + pixel.r * (pixel.a * w / 65280) / 65280;
            C[1] = C[1] + pixel.g * (pixel.a * w / 65280) / 65280;
            C[2] = C[2] + pixel.b * (pixel.a * w / 65280) / 65280;
        }
    }

    void Write(RGBA16& pixel, double alpha) const {
        const auto channel = [](double v) { return static_cast<uint16_t>(static_cast<int>(v)); };
        pixel = {channel((65280 / A) * C[0]), channel((65280 / A) * C[1]),
                 channel((65280 / A) * C[2]), channel(alpha)};
    }

    void DrawNearest(RGBA16& pixel, const Axis& x, const Axis& y) const {
        const int column = Floor(x.At(x.before));
        const int row = Floor(y.At(y.before));
        if (InClip(column, row) && At(column, row).a != 0) {
            pixel = At(column, row);
            pixel.a = static_cast<uint16_t>(x.cover * y.cover * pixel.a);
        }
    }

    void DrawAverage(RGBA16& pixel, const Axis& x, const Axis& y) {
        for (int r = Floor(y.At(y.before)); r < Ceil(y.At(y.after)); ++r) {
            for (int c = Floor(x.At(x.before)); c < Ceil(x.At(x.after)); ++c) {
                const double w = x.Weight(c) * y.Weight(r);
                W = W + w;
                if (InClip(c, r)) {
                    Add(At(c, r), w);
                }
            }
        }
        if (A > 0 && W > 1e-6) {
            Write(pixel, x.cover * y.cover * A * 65280 / W);
        }
    }

    static int Wrap(int v, int begin, int size) {
        int rest = v - begin;
        rest = rest < 0 ? size - (-rest % size) : rest;
        return begin + (rest >= size ? rest % size : rest);
    }

    void Sample(int x, int y, double w) {
        const bool known = boundary >= 0 && boundary <= 2;
        I = InClip(x, y) || !known ? I + w : I;
        if (boundary == 1) {
            x = x < clip.left ? clip.left : (x >= clip.right ? clip.right - 1 : x);
            y = y < clip.top ? clip.top : (y >= clip.bottom ? clip.bottom - 1 : y);
        } else if (boundary == 2 && clip.left < clip.right && clip.top < clip.bottom) {
            x = Wrap(x, clip.left, clip.right - clip.left);
            y = Wrap(y, clip.top, clip.bottom - clip.top);
        }
        if (known ? InClip(x, y) : x >= 0 && y >= 0 && x < s.width && y < s.height) {
            Add(At(x, y), w);
        }
    }

    void DrawBilinear(RGBA16& pixel, const Axis& x, const Axis& y) {
        const int right = Floor(x.Centre() + 0.5);
        const int lower = Floor(y.Centre() + 0.5);
        const double fx = x.Centre() - right + 0.5;
        const double fy = y.Centre() - lower + 0.5;
        Sample(right - 1, lower - 1, (1 - fx) * (1 - fy));
        Sample(right, lower - 1, fx * (1 - fy));
        Sample(right - 1, lower, (1 - fx) * fy);
        Sample(right, lower, fx * fy);
        if (A > 0 && (boundary == 0 || I > 0)) {
            const double alpha = x.cover * y.cover * A * 65280;
            Write(pixel, fade && boundary != 0 && I < 0.85 ? alpha * I / 0.85 : alpha);
        }
    }
};

}  // namespace imgbasic
