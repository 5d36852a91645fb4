// Points of the unit cube that fill it more evenly than random ones: Latin hypercubes, strata, Sobol's and Halton's
// sequences.
#pragma once

#include <cstddef>
#include <span>

#include "base/philox.h"

namespace pral::designs {

/// Each fills `out`, whose rows are points of `dimensions` coordinates inside (0,1).

/// McKay, Beckman and Conover 1979: on each axis one point in each slice.
void latin_hypercube(std::span<double> out, std::size_t dimensions, PhiloxStream& stream);

/// The number of slices k of each axis with count = k^dimensions; 0 where there is none.
std::size_t slices(std::size_t count, std::size_t dimensions);
/// One point in each cell of a grid of k slices of each axis.
void stratified(std::span<double> out, std::size_t dimensions, std::size_t k, PhiloxStream& stream);

enum class Sequence { sobol, halton };
std::size_t most_dimensions(Sequence);
/// The first points of a sequence, the one at the origin among them. With a stream the points are moved: Sobol's by a
/// random exclusive or (which keeps it a digital net), Halton's by a random shift (Cranley and Patterson 1976). Without one
/// they are moved by half of 1/count, so that none lies on an edge.
void quasi_random(std::span<double> out, std::size_t dimensions, Sequence sequence, PhiloxStream* stream);

}  // namespace pral::designs
