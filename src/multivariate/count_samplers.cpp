#include "multivariate/count_samplers.h"

#include <algorithm>

#include "distributions/families.h"
#include "distributions/members.h"

namespace pral::multivariate {

bool share_by_probability(double n, std::span<const double> p, std::size_t skipped, double* counts) {
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
        if (!draw(&counts[i], Binomial(left, p[i] == 0 ? 0 : conditional))) return false;
        counts[i] = std::clamp(counts[i], 0.0, left);
        left -= counts[i];
        used += p[i];
    }
    return true;
}

bool share_by_size(double n, std::span<const double> sizes, std::size_t skipped, double* counts) {
    double pool = 0, left = n;
    for (std::size_t i = 0; i < sizes.size(); ++i) pool += i == skipped ? 0 : sizes[i];
    bool first = true;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        counts[i] = 0;
        if (i == skipped || (!first && left == 0)) continue;
        first = false;
        if (!draw(&counts[i], Hypergeo{left, sizes[i], pool})) return false;
        left -= counts[i];
        pool -= sizes[i];
    }
    return true;
}

namespace {

struct Urn {
    std::span<const double> D;

    bool wait(std::size_t g, double missing, const std::vector<double>& counts, double& others) const {
        const std::vector<double> rest = remaining(counts);
        double pool = 0;
        for (const double size : rest) pool += size;
        return draw(&others, InvHypergeo{missing, rest[g], pool});
    }
    bool share(double n, std::size_t g, const std::vector<double>& counts, double* shares) const {
        return share_by_size(n, remaining(counts), g, shares);
    }
    std::vector<double> remaining(const std::vector<double>& counts) const {
        std::vector<double> rest(D.begin(), D.end());
        for (std::size_t i = 0; i < rest.size(); ++i) rest[i] -= counts[i];
        return rest;
    }
};

struct Trials {
    std::span<const double> p;

    bool wait(std::size_t g, double missing, const std::vector<double>&, double& others) const {
        // Nothing is waited for without a quota, not even where the category never comes.
        return draw(&others, NegBin{missing, missing > 0 ? p[g] : 1});
    }
    bool share(double n, std::size_t g, const std::vector<double>&, double* shares) const {
        return share_by_probability(n, p, g, shares);
    }
};

}  // namespace

std::vector<double> wait_for_urn(std::span<const double> quota, std::span<const double> D) {
    return wait_for_quotas(quota, Urn{D});
}

std::vector<double> wait_for_trials(std::span<const double> quota, std::span<const double> p) {
    return wait_for_quotas(quota, Trials{p});
}

}  // namespace pral::multivariate
