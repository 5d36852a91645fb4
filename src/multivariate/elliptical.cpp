#include "multivariate/elliptical.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "distributions/families.h"
#include "distributions/members.h"
#include "numerics/normal.h"

namespace pral::multivariate {

namespace {

/// The percentile of t, formed from the upper tail on either side.
double student_percentile(const Student& student, double t) {
    const double tail = 1 - student.cumulative(std::fabs(t));
    return t >= 0 ? 1 - tail : tail;
}

}  // namespace

void sample_normal_copula(const CovarianceFactor& factor, int count, double* out, RandomStream& stream) {
    std::vector<double> z(factor.size());
    for (int s = 0; s < count; ++s, out += factor.size()) {
        factor.draw(stream, z.data(), out);
        for (int j = 0; j < factor.size(); ++j) out[j] = numerics::normal_cumulative(out[j]);
    }
}

bool StudentCopula::sample(int count, double* out, RandomStream& stream) const {
    const std::size_t d = factor_.size(), samples = std::max(count, 0);
    const Student student{nu_};
    const ChiSq chi_square{nu_};
    if (samples > 0 && chi_square.check() != nullptr) return draw(out, chi_square);  // fails
    const Truncated<ChiSq> whole(chi_square, true, Modifiers{});
    constexpr std::size_t kUniforms = 4096;
    const std::size_t block =
        std::clamp(kUniforms / (d + 1), std::size_t{1}, std::max(samples, std::size_t{1}));
    std::vector<double> uniforms(block * (d + 1)), w(block), z(block * d), y(d);
    for (std::size_t done = 0; done < samples; done += block) {
        const std::size_t size = std::min(block, samples - done);
        stream.fill({uniforms.data(), size * (d + 1)});
        for (std::size_t s = 0; s < size; ++s) {
            const double* row = &uniforms[s * (d + 1)];
            w[s] = row[0];
            std::copy_n(row + 1, d, &z[s * d]);
        }
        whole.quantiles({w.data(), size});
        numerics::normal_quantiles({z.data(), size * d});
        for (std::size_t s = 0; s < size; ++s, out += d) {
            const double scale = std::sqrt(nu_ / w[s]);
            factor_.correlate(&z[s * d], y.data());
            for (std::size_t j = 0; j < d; ++j) out[j] = student_percentile(student, y[j] * scale);
        }
    }
    return true;
}

bool StudentCopula::sample_pair(double* out, RandomStream& stream) const {
    const Student student{nu_};
    double w, z[2], y[2];
    if (!draw(&w, ChiSq{nu_})) return false;
    factor_.draw(stream, z, y);
    for (int j = 0; j < 2; ++j) out[j] = student_percentile(student, y[j] * std::sqrt(nu_ / w));
    return true;
}

}  // namespace pral::multivariate
