#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lib/image/resample.h"

namespace imgbasic {

/// What the kernels must draw, step by step and pixel by pixel: the oracle of their tests.
/// For finite rectangles of ordinary size.
struct SimpleResample {
    enum Kernel { Nearest, Average, Bilinear };

    Kernel kernel;
    int32_t boundary;
    bool fade;
    ResampleTarget d;
    ResampleSource s;
    PixelRect clip;

    void Draw() {
        if (!Clip()) {
            return;
        }
        clip = {std::max(clip.left, 0), std::max(clip.top, 0), std::min(clip.right, s.width),
                std::min(clip.bottom, s.height)};
        double ay = 0;
        for (int j = Floor(dy); j <= Ceil(dy + dh) - 1; ++j) {
            const double cy = j - dy < 0 ? j - dy + 1 : std::min(dy + dh - j, 1.0);
            double ax = 0;
            for (int i = Floor(dx); i <= Ceil(dx + dw) - 1; ++i) {
                const double cx = i - dx < 0 ? i - dx + 1 : std::min(dx + dw - i, 1.0);
                RGBA16& pixel = d.pixels[int64_t{j} * d.width + i];
                A = C[0] = C[1] = C[2] = W = I = 0;
                if (kernel == Nearest) {
                    DrawNearest(pixel, ax, ay, cx * cy);
                } else if (kernel == Average) {
                    DrawAverage(pixel, ax, ax + cx, ay, ay + cy, cx * cy);
                } else {
                    DrawBilinear(pixel, ax, ax + cx, ay, ay + cy, cx * cy);
                }
                ax = ax + cx;
            }
            ay = ay + cy;
        }
    }

    static constexpr double kEps = 1e-6;
    double sx = 0, sy = 0, sw = 0, sh = 0, dx = 0, dy = 0, dw = 0, dh = 0;
    double A = 0, C[3] = {}, W = 0, I = 0;

    static int Floor(double v) { return static_cast<int>(std::floor(v)); }
    static int Ceil(double v) { return static_cast<int>(std::ceil(v)); }

    bool Clip() {
        sx = s.rect.x, sy = s.rect.y, sw = s.rect.width, sh = s.rect.height;
        dx = d.rect.x, dy = d.rect.y, dw = d.rect.width, dh = d.rect.height;
        sw = sw < 0 ? s.width : sw;
        sh = sh < 0 ? s.height : sh;
        if (sw < kEps || sh < kEps || dw < kEps || dh < kEps || clip.right - clip.left < 1 ||
            clip.bottom - clip.top < 1) {
            return false;
        }
        return ClipBefore(sx, sw, dx, dw) && ClipBefore(sy, sh, dy, dh) &&
               ClipAfter(sx, sw, dw, s.width) && ClipAfter(sy, sh, dh, s.height) && ClipTarget();
    }

    static bool ClipBefore(double& from, double& size, double& to, double& toSize) {
        if (from < 0) {
            const double c = -from / size * toSize;
            size = size - from;
            toSize = toSize - c;
            to = to + c;
            from = 0;
        }
        return size >= kEps && toSize >= kEps;
    }

    static bool ClipAfter(double from, double& size, double& toSize, double limit) {
        if (from + size > limit) {
            const double rest = limit - from;
            toSize = rest / size * toSize;
            size = rest;
        }
        return size >= kEps && toSize >= kEps;
    }

    bool ClipTarget() {
        if (dx < 0) {
            const double c = -dx / dw * sw;
            sw = sw - c;
            dw = dw - dx;
            sx = sx + c;
            dx = 0;
        }
        if (sw < kEps || dw < kEps) {
            return false;
        }
        if (dy < 0) {
            const double c = -dy / dh * sh;
            dh = dh - dy;
            sy = sy + c;
            sh = sh - c;
            dy = 0;
        }
        if (dx + dw > d.width) {
            const double rest = d.width - dx;
            sw = rest / dw * sw;
            dw = rest;
        }
        if (sw < kEps || dw < kEps) {
            return false;
        }
        if (dy + dh > d.height) {
            const double rest = d.height - dy;
            sh = rest / dh * sh;
            dh = rest;
        }
        return true;
    }

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
        const auto channel = [](double v) {
            return static_cast<uint16_t>(static_cast<int64_t>(v));
        };
        pixel = {channel((65280 / A) * C[0]), channel((65280 / A) * C[1]),
                 channel((65280 / A) * C[2]), channel(alpha)};
    }

    void DrawNearest(RGBA16& pixel, double ax, double ay, double cover) const {
        const int x = Floor(ax * sw * (1 / dw) + sx);
        const int y = Floor(ay * sh * (1 / dh) + sy);
        if (InClip(x, y) && At(x, y).a != 0) {
            pixel = At(x, y);
            pixel.a = static_cast<uint16_t>(cover * pixel.a);
        }
    }

    void DrawAverage(RGBA16& pixel, double ax, double axEnd, double ay, double ayEnd,
                     double cover) {
        const double x0 = ax * sw * (1 / dw) + sx;
        const double x1 = axEnd * sw * (1 / dw) + sx;
        const double y0 = ay * sh * (1 / dh) + sy;
        const double y1 = ayEnd * sh * (1 / dh) + sy;
        for (int r = Floor(y0); r <= Ceil(y1) - 1; ++r) {
            const double wy = r - y0 < 0 ? r - y0 + 1 : std::min(y1 - r, 1.0);
            for (int c = Floor(x0); c <= Ceil(x1) - 1; ++c) {
                const double wx = c - x0 < 0 ? c - x0 + 1 : std::min(x1 - c, 1.0);
                W = W + wx * wy;
                if (InClip(c, r)) {
                    Add(At(c, r), wx * wy);
                }
            }
        }
        if (A > 0 && W > kEps) {
            Write(pixel, cover * A * 65280 / W);
        }
    }

    static int Wrap(int v, int begin, int size) {
        int rest = v - begin;
        if (rest < 0) {
            rest = size - (-rest % size);
        }
        return begin + (rest >= size ? rest % size : rest);
    }

    void Sample(int x, int y, double w) {
        const bool inside = InClip(x, y);
        if (boundary == 1) {
            x = x < clip.left ? clip.left : (x >= clip.right ? clip.right - 1 : x);
            y = y < clip.top ? clip.top : (y >= clip.bottom ? clip.bottom - 1 : y);
        } else if (boundary == 2 && clip.left < clip.right && clip.top < clip.bottom) {
            x = Wrap(x, clip.left, clip.right - clip.left);
            y = Wrap(y, clip.top, clip.bottom - clip.top);
        }
        const bool known = boundary >= 0 && boundary <= 2;
        I = inside || !known ? I + w : I;
        if (known ? InClip(x, y) : x >= 0 && y >= 0 && x < s.width && y < s.height) {
            Add(At(x, y), w);
        }
    }

    void DrawBilinear(RGBA16& pixel, double ax, double axEnd, double ay, double ayEnd,
                      double cover) {
        const double px = (ax + axEnd) * sw * (0.5 / dw) + sx;
        const double py = (ay + ayEnd) * sh * (0.5 / dh) + sy;
        const int xr = Floor(px + 0.5);
        const int yb = Floor(py + 0.5);
        const double fx = px - xr + 0.5;
        const double fy = py - yb + 0.5;
        Sample(xr - 1, yb - 1, (1 - fx) * (1 - fy));
        Sample(xr, yb - 1, fx * (1 - fy));
        Sample(xr - 1, yb, (1 - fx) * fy);
        Sample(xr, yb, fx * fy);
        if (A > 0 && (boundary == 0 || I > 0)) {
            const bool fades = fade && boundary != 0 && I < 0.85;
            Write(pixel, fades ? cover * A * 65280 * I / 0.85 : cover * A * 65280);
        }
    }
};

}  // namespace imgbasic
