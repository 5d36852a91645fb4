#include "multivariate/elliptical.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "distributions/continuous/gamma.h"
#include "distributions/continuous/student.h"
#include "distributions/draws.h"
#include "numerics/normal.h"

namespace pral::multivariate {

namespace {

/// The percentiles of Student's t, formed from the upper tail on either side, and so with an absolute error of 2e-16
/// at best. That is what the finite sums for few whole degrees of freedom have (Abramowitz and Stegun 26.7.3 and
/// 26.7.4): with tan a = |t|/sqrt(nu), 2 F - 1 is sin a times a polynomial in cos^2 a for even nu, and 2/pi (a + sin
/// a cos a times one) for odd nu.
class StudentPercentile {
  public:
    explicit StudentPercentile(double nu) : student_(nu), root_(std::sqrt(nu)) {
        constexpr double kMostDegrees = 100;  // beyond, the sums are no faster
        if (!(nu >= 1 && nu <= kMostDegrees && nu == std::floor(nu))) return;
        odd_ = static_cast<int>(nu) % 2 == 1;
        polynomial_.push_back(nu == 1 ? 0 : 1);
        for (double k = odd_ ? 3 : 2; k < nu; k += 2) polynomial_.push_back(polynomial_.back() * (k - 1) / k);
    }

    double operator()(double t) const {
        const double tail = 1 - cumulative(std::fabs(t));
        return t >= 0 ? 1 - tail : tail;
    }

  private:
    double cumulative(double t) const {
        if (polynomial_.empty()) return student_.cumulative(t);
        const double tangent = t / root_;
        if (tangent > 1e150) return 1;
        const double cosine2 = 1 / (1 + tangent * tangent), cosine = std::sqrt(cosine2);
        double sum = 0;
        for (std::size_t i = polynomial_.size(); i-- > 0;) sum = sum * cosine2 + polynomial_[i];
        sum *= tangent * cosine;
        return 0.5 + (odd_ ? (std::atan(tangent) + cosine * sum) / numerics::kPi : 0.5 * sum);
    }

    Student student_;
    double root_;
    bool odd_ = false;
    std::vector<double> polynomial_;  // by rising powers; empty: there is none
};

}  // namespace

void sample_normal_copula(const CovarianceFactor& factor, int count, double* out, RandomStream& stream) {
    std::vector<double> z(factor.size());
    for (int s = 0; s < count; ++s, out += factor.size()) {
        factor.draw(stream, z.data(), out);
        numerics::normal_cumulatives({out, static_cast<std::size_t>(factor.size())});
    }
}

Message StudentCopula::sample(int count, double* out, RandomStream& stream) const {
    const std::size_t d = factor_.size(), samples = std::max(count, 0);
    const StudentPercentile percentile(nu_);
    const ChiSq chi_square{nu_};
    if (samples > 0 && chi_square.check() != nullptr) return draw(*out, chi_square, stream);  // objects
    const Truncated<ChiSq> whole(chi_square);
    std::vector<double> w(samples), y(d);
    for (std::size_t s = 0; s < samples; ++s) {
        w[s] = stream.uniform();
        stream.fill({out + s * d, d});
    }
    whole.quantiles(w);
    numerics::normal_quantiles({out, samples * d});
    for (const double chi_square_value : w) {
        const double scale = std::sqrt(nu_ / chi_square_value);
        factor_.correlate(out, y.data());
        for (std::size_t j = 0; j < d; ++j) *out++ = percentile(y[j] * scale);
    }
    return nullptr;
}

Message StudentCopula::sample_pair(double* out, RandomStream& stream) const {
    const StudentPercentile percentile(nu_);
    double w, z[2], y[2];
    if (const Message objection = draw(w, ChiSq{nu_}, stream)) return objection;
    factor_.draw(stream, z, y);
    for (int j = 0; j < 2; ++j) out[j] = percentile(y[j] * std::sqrt(nu_ / w));
    return nullptr;
}

}  // namespace pral::multivariate
