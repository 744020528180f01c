#pragma once

#include <cstdint>
#include <span>

namespace toolkit {

/// One filled shape of a small picture, in a square of 32 by 32 units.
struct Shape {
    enum class Kind { box, ellipse, polygon };
    Kind kind;
    uint32_t rgb;
    /// Box and ellipse: left, top, right, bottom. Polygon: x, y of each corner.
    std::span<const float> points;
};

/// A picture of the program's own: shapes drawn one over the other.
struct Drawing {
    std::span<const Shape> shapes;
};

}  // namespace toolkit
