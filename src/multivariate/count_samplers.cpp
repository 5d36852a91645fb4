#include "multivariate/count_samplers.h"

#include <algorithm>

#include "distributions/discrete/binomial.h"
#include "distributions/discrete/hypergeometric.h"
#include "distributions/discrete/negative_binomial.h"
#include "distributions/draws.h"

namespace pral::multivariate {

const CountDraws kPlainDraws = {
    [](double& out, double n, double p, RandomStream& stream) { return draw(out, Binomial(n, p), stream); },
    [](double& out, double s, double p, RandomStream& stream) { return draw(out, NegBin(s, p), stream); }};

Message share_by_probability(double n, std::span<const double> p, std::size_t skipped, double* counts,
                             RandomStream& stream, const CountDraws& draws) {
    std::size_t last = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        if (i != skipped && p[i] > 0) last = i;
    }
    double left = n, used = skipped < p.size() ? p[skipped] : 0;
    bool first = true;
    for (std::size_t i = 0; i < p.size(); ++i) {
        counts[i] = 0;
        if (i == skipped || (!first && left == 0)) continue;
        first = false;
        const double rest = 1 - used, conditional = i != last && p[i] < rest ? p[i] / rest : 1;
        const double share = p[i] == 0 ? 0 : conditional;
        if (const Message objection = draws.binomial(counts[i], left, share, stream)) return objection;
        counts[i] = std::clamp(counts[i], 0.0, left);
        left -= counts[i];
        used += p[i];
    }
    return nullptr;
}

Message share_by_size(double n, std::span<const double> sizes, std::size_t skipped, double* counts,
                      RandomStream& stream) {
    double pool = 0, left = n;
    for (std::size_t i = 0; i < sizes.size(); ++i) pool += i == skipped ? 0 : sizes[i];
    bool first = true;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        counts[i] = 0;
        if (i == skipped || (!first && left == 0)) continue;
        first = false;
        if (const Message objection = draw(counts[i], Hypergeo{left, sizes[i], pool}, stream))
            return objection;
        left -= counts[i];
        pool -= sizes[i];
    }
    return nullptr;
}

namespace {

struct Urn {
    std::span<const double> D;
    RandomStream& stream;

    Message wait(std::size_t g, double missing, const std::vector<double>& counts, double& others) const {
        const std::vector<double> rest = remaining(counts);
        double pool = 0;
        for (const double size : rest) pool += size;
        return draw(others, InvHypergeo{missing, rest[g], pool}, stream);
    }
    Message share(double n, std::size_t g, const std::vector<double>& counts, double* shares) const {
        return share_by_size(n, remaining(counts), g, shares, stream);
    }
    std::vector<double> remaining(const std::vector<double>& counts) const {
        std::vector<double> rest(D.begin(), D.end());
        for (std::size_t i = 0; i < rest.size(); ++i) rest[i] -= counts[i];
        return rest;
    }
};

struct Trials {
    std::span<const double> p;
    RandomStream& stream;
    const CountDraws& draws;

    Message wait(std::size_t g, double missing, const std::vector<double>&, double& others) const {
        // Nothing is waited for without a quota, not even where the category never comes.
        return draws.negative_binomial(others, missing, missing > 0 ? p[g] : 1, stream);
    }
    Message share(double n, std::size_t g, const std::vector<double>&, double* shares) const {
        return share_by_probability(n, p, g, shares, stream, draws);
    }
};

}  // namespace

Message wait_for_urn(std::span<const double> quota, std::span<const double> D, std::vector<double>& counts,
                     RandomStream& stream) {
    return wait_for_quotas(quota, Urn{D, stream}, counts);
}

Message wait_for_trials(std::span<const double> quota, std::span<const double> p, std::vector<double>& counts,
                        RandomStream& stream, const CountDraws& draws) {
    return wait_for_quotas(quota, Trials{p, stream, draws}, counts);
}

}  // namespace pral::multivariate
