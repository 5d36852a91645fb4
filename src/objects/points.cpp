// Designs of the unit cube.
#include <limits>
#include <string>

#include "objects/handles.h"
#include "statistics/designs.h"

using namespace pral::objects;
namespace designs = pral::designs;

namespace {

pral::PhiloxStream& needed(pral_stream* stream) { return checked(stream, "stream").stream; }

void sequence_points(designs::Sequence sequence, pral_stream* stream, std::span<double> out,
                     std::size_t dimensions) {
    if (dimensions > designs::most_dimensions(sequence))
        refuse(PRAL_ERROR_ARGUMENT, "this design has at most " +
                                        std::to_string(designs::most_dimensions(sequence)) + " dimensions");
    quasi_random(out, dimensions, sequence, stream == nullptr ? nullptr : &needed(stream));
}

}  // namespace

pral_status pral_points(int32_t design, pral_stream* stream, double* out, size_t count, size_t dimensions,
                        pral_error* error) {
    return guarded(error, [&] {
        if (dimensions == 0) refuse(PRAL_ERROR_ARGUMENT, "there must be a dimension");
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(double) / dimensions)
            refuse(PRAL_ERROR_MEMORY, "there are too many points");
        required_array(out, count, "out");
        const std::span<double> points(out, count * dimensions);
        switch (design) {
            case PRAL_LATIN_HYPERCUBE:
                if (count > 0) designs::latin_hypercube(points, dimensions, needed(stream));
                return;
            case PRAL_STRATIFIED: {
                if (count == 0) return;
                const std::size_t k = designs::slices(count, dimensions);
                if (k == 0)
                    refuse(PRAL_ERROR_ARGUMENT,
                           "the count must be a whole number to the power of the dimensions");
                return designs::stratified(points, dimensions, k, needed(stream));
            }
            case PRAL_SOBOL:
                return sequence_points(designs::Sequence::sobol, stream, points, dimensions);
            case PRAL_HALTON:
                return sequence_points(designs::Sequence::halton, stream, points, dimensions);
            default:
                refuse(PRAL_ERROR_ARGUMENT, "there is no such design");
        }
    });
}
