#pragma once

#include <cstdint>
#include <string>

#include "host/document.h"

namespace imgbasic::samples {

// Only +, -, *, /, floor and square roots, which every machine rounds alike, so that the same
// picture comes out everywhere.

/// Straight colour, 0..255 a channel.
struct Color {
    double r;
    double g;
    double b;
};

Color Mix(Color a, Color b, double t);

/// 0 below `low`, 1 above `high`, a smooth rise between them.
double Smooth(double low, double high, double value);

/// Reproducible noise in 0..1 that belongs to the integer point.
double Hash(int32_t x, int32_t y, uint32_t seed);

/// Smooth noise in 0..1: `octaves` layers of interpolated lattice noise, each of half the size
/// and weight of the one before (value noise, as Perlin's fractal sums use it, 1985).
double Noise(double x, double y, int octaves, uint32_t seed);

/// One layer being painted, 8 bits a channel in the end.
class Canvas {
  public:
    Canvas(int32_t width, int32_t height);

    int32_t Width() const { return width_; }
    int32_t Height() const { return height_; }

    /// Lays `colour` over the pixel with `coverage`, 0..1; outside the picture nothing happens.
    void Put(int32_t x, int32_t y, Color color, double coverage = 1);

    /// A hard line one pixel wide (Bresenham, 1965).
    void Line(int32_t x0, int32_t y0, int32_t x1, int32_t y1, Color color);

    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom, Color color,
                   double coverage = 1);

    /// Capitals, digits and a few signs of 5 x 7 dots, each `dot` pixels wide and high.
    void Text(int32_t x, int32_t y, int32_t dot, const char* text, Color color);

    /// The finished layer, cut down to 8 bits a channel.
    host::Layer ToLayer(std::string name) const;

  private:
    int32_t width_;
    int32_t height_;
    std::vector<RGBA16> pixels_;
};

}  // namespace imgbasic::samples
