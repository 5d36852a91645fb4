// Aggregate claims: computing a portfolio, and sampling one that is known.
#include <benchmark/benchmark.h>

#include <vector>

#include "classic/core_api.h"

namespace {

struct Book {
    std::vector<double> q, policies;
    int classes, amounts;
};

/// The 31 policies of H. U. Gerber, "An Introduction to Mathematical Risk Theory" (1979).
Book gerber() {
    return {{0.03, 0.04, 0.05, 0.06}, {2, 3, 1, 2, 0, 0, 1, 2, 2, 1, 0, 2, 4, 2, 2, 0, 2, 2, 2, 1}, 4, 5};
}

/// 50 classes with q up to `largest`, of 100 amounts, 1 to 3 policies each.
Book large(double largest) {
    Book book{{}, {}, 50, 100};
    for (int i = 1; i <= 50; ++i) book.q.push_back(largest * i / 50);
    for (int k = 0; k < 5000; ++k) book.policies.push_back(1 + k * 7 % 3);
    return book;
}

double value(const Book& book, int order) {
    double out = 0;
    const double u = 0.5;
    PralAggregateDePril_Core(&out, book.q.data(), book.policies.data(), book.classes, book.amounts, 1, &order,
                             &u);
    return out;
}

/// A portfolio that no call has seen: one probability differs by some last bits.
void compute(benchmark::State& state, Book book) {
    for (auto _ : state) {
        book.q[0] *= 1 + 1e-15;
        double out = value(book, static_cast<int>(state.range(0)));
        benchmark::DoNotOptimize(out);
    }
}

void DePrilGerber(benchmark::State& state) { compute(state, gerber()); }
/// The second range is the largest q, in thousandths: the recursion for small ones, the convolution for others.
void DePrilLarge(benchmark::State& state) {
    compute(state, large(static_cast<double>(state.range(1)) / 1000));
}

void DePrilKnown(benchmark::State& state) {
    const Book book = state.range(0) == 0 ? gerber() : large(0.02);
    value(book, 4);
    for (auto _ : state) {
        double out = value(book, 4);
        benchmark::DoNotOptimize(out);
    }
}

BENCHMARK(DePrilGerber)->Arg(0);
BENCHMARK(DePrilLarge)
    ->Args({4, 20})
    ->Args({4, 200})
    ->Args({0, 20})
    ->Args({0, 200})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DePrilKnown)->Arg(0)->Arg(1);

}  // namespace
