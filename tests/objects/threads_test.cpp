// Distributions of every family and of every sort of combination, shared by threads that call all that there is; built by the
// preset `thread` as well, which watches for races.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <bit>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "objects/examples.h"

namespace {

using pral::Distribution;
using namespace pral::test;

std::vector<Distribution> one_of_each() {
    std::vector<Distribution> all;
    for (const auto& [family, parameters] : examples()) all.emplace_back(family, parameters);
    for (const char* text : {"Gamma(2.5, 3) within [1, 9]", "Hypergeo(50, 60, 100) within [20, 40]",
                             "Normal(0, 1) within [30, 31]", "-2 * Poisson(40) + 1",
                             "Mixture(0.3: Normal(0, 1), 0.7: ZIPoisson(2, 0.5))",
                             "Discrete({3, 1, 2}, {1, 1, 2}) within percentiles [0.1, 0.9]"})
        all.push_back(Distribution::parse(text));
    return all;
}

/// All numbers that the functions give of a distribution, as their bits: NaN is like itself.
std::vector<std::uint64_t> all_of(const Distribution& d, pral::Stream stream) {
    constexpr std::size_t kValues = 400;  // enough for the tables of quantiles
    std::vector<double> all = d.sample(stream, kValues), x(all.begin(), all.begin() + 16), u(16), out(16);
    stream.fill(u);
    const auto add = [&](auto function, const std::vector<double>& in) {
        EXPECT_EQ(function(d.get(), in.data(), out.data(), in.size(), nullptr), PRAL_OK);
        all.insert(all.end(), out.begin(), out.begin() + static_cast<std::ptrdiff_t>(in.size()));
    };
    for (const auto function : {pral_pdf, pral_logpdf, pral_cdf, pral_logcdf, pral_sf, pral_logsf})
        add(function, x);
    for (const auto function : {pral_quantile, pral_upper_quantile}) add(function, u);
    u.resize(3);
    for (double& each : u) each *= -300;
    for (const auto function : {pral_log_quantile, pral_log_upper_quantile}) add(function, u);
    const double p = 0.75;
    for (const auto function : {pral_upper_tail_mean, pral_lower_tail_mean}) {
        double mean = 0;
        EXPECT_EQ(function(d.get(), &p, &mean, 1, nullptr), PRAL_OK);
        all.push_back(mean);
    }
    const pral::Moments moments = d.moments();
    const auto [lower, upper] = d.support();
    for (const double each : {moments.mean, moments.variance, moments.skewness, moments.excess_kurtosis,
                              lower, upper, d.mode(), d.limited_mean(x[0])})
        all.push_back(each);
    std::vector<std::uint64_t> bits;
    for (const double each : all) bits.push_back(std::bit_cast<std::uint64_t>(each));
    for (const char c : Distribution::parse(d.text()).text()) bits.push_back(static_cast<std::uint64_t>(c));
    return bits;
}

/// The objects are new when the threads meet them: nothing may be left to be made at the first call.
TEST(Threads, ShareDistributionsOfEveryFamily) {
    constexpr std::size_t kThreads = 8;
    const std::vector<Distribution> shared = one_of_each();
    const pral::Stream origin(1);
    std::vector<std::vector<std::vector<std::uint64_t>>> results(kThreads);
    const auto work = [&](std::size_t id) {
        for (const Distribution& d : shared)
            results[id].push_back(all_of(d, origin.child(id % 2)));  // two threads in turn must agree
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
    const std::vector<Distribution> alone = one_of_each();
    for (std::size_t i = 0; i < alone.size(); ++i)
        for (std::size_t id = 0; id < kThreads; ++id) {
            if (id < 2) {
                EXPECT_EQ(results[id][i], all_of(alone[i], origin.child(id))) << alone[i].text();
            }
            EXPECT_EQ(results[id][i], results[id % 2][i]) << alone[i].text();
        }
}

}  // namespace
