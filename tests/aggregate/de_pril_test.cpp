// Aggregate claims against exact convolution and the exact recursion (reference/make_data.py).
#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "classic/core_api.h"
#include "classic/crc16.h"
#include "support/table.h"

namespace {

using namespace pral::test;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Book {
    std::vector<double> q, policies;
    double base = 1;
    int order = 0;

    int classes() const { return static_cast<int>(q.size()); }
    int amounts() const { return static_cast<int>(policies.size() / std::max<std::size_t>(q.size(), 1)); }
    bool value(double* out, const double* u) const {
        return PralAggregateDePril_Core(out, q.data(), policies.data(), classes(), amounts(), base, &order,
                                        u);
    }
    double quantile(double u) const {
        double out = kNaN;
        EXPECT_TRUE(value(&out, &u)) << PralCoreError();
        return out;
    }
    bool probability(double* out, double x, bool cumulative, bool log10) const {
        const int flag = cumulative ? 7 : -1;  // -1 asks for no cumulative
        const auto member = log10 ? PralAggregateDePrilProb10_Core : PralAggregateDePrilProb_Core;
        double same[] = {x, x};
        const bool done =
            member(out, same, 1, q.data(), policies.data(), classes(), amounts(), base, &order, &flag);
        EXPECT_EQ(same[0], x);
        return done;
    }
    double at(double x, bool cumulative, bool log10 = false) const {
        double out = kNaN;
        EXPECT_TRUE(probability(&out, x, cumulative, log10)) << PralCoreError();
        return out;
    }
    std::string refusal() const {
        double out = 7;
        EXPECT_FALSE(value(&out, nullptr));
        EXPECT_EQ(out, 0);
        const std::string sampling = PralCoreError();
        for (const bool log10 : {false, true}) {
            EXPECT_FALSE(probability(&out, 1, true, log10));
            EXPECT_EQ(PralCoreError(), sampling);
        }
        return sampling;
    }
};

void expect_near(double actual, double expected, double relative, const std::string& what) {
    EXPECT_LE(std::fabs(actual - expected), relative * std::fabs(expected))
        << what << ": " << actual << " instead of " << expected;
}

TEST(DePril, AgreesWithExactConvolution) {
    for (const auto& row : table("reference/aggregate.tsv")) {
        const std::string what = row.at(0) + " | " + row.at(1) + " K " + row.at(2) + " x " + row.at(3);
        for (const double base : {1.0, 1000.0}) {
            const Book book{numbers(row.at(0)), numbers(row.at(1)), base, std::stoi(row.at(2))};
            const double x = numbers(row.at(3)).at(0), density = numbers(row.at(4)).at(0);
            const double cumulative = numbers(row.at(5)).at(0), log10 = numbers(row.at(6)).at(0);
            const double quantile = numbers(row.at(7)).at(0);
            expect_near(book.at(base * x, false), density, 1e-12, what);
            expect_near(book.at(base * x, true), cumulative, 1e-13, what);
            expect_near(book.at(base * x, true, true), log10, 1e-12, what);
            expect_near(book.quantile(0.8125), base * quantile, 1e-13, what);
        }
    }
}

/// Where the signs alternate the answer comes from the convolution; one amount alone is a binomial.
TEST(DePril, KeepsDigitsWhereTheRecursionLosesThem) {
    struct Row {
        double q, n, s, ratio;  // g(s)/g(s - 1)
    };
    const Row rows[] = {
        {0.02, 10000, 300, 9701 / 300.0 * (0.02 / 0.98)},
        {0.1, 500, 100, 401 / 100.0 / 9},
        {0.1, 500, 3, 498 / 3.0 / 9},
        {0.45, 1000, 600, 401 / 600.0 * (0.45 / 0.55)},
        {0.45, 1000, 5, 996 / 5.0 * (0.45 / 0.55)},
        {0.9, 200, 150, 51 / 150.0 * 9},
        {0.5, 400, 390, 11 / 390.0},
        {1e-6, 1e8, 120, (1e8 - 119) / 120 * 1e-6 / (1 - 1e-6)},
    };
    for (const Row& row : rows) {
        const Book book{{row.q}, {row.n}};
        const std::string what = std::to_string(row.q) + " " + std::to_string(row.s);
        const double logs = book.at(row.s, false, true) - book.at(row.s - 1, false, true);
        EXPECT_NEAR(logs, std::log10(row.ratio), 1e-12) << what;
    }
}

TEST(DePril, PortfoliosWithoutUncertainty) {
    const Book nothing{{0, 0}, {3, 1, 4, 1}}, nobody{{0.5}, {0, 0}}, certain{{1, 0}, {3, 1, 4, 1}, 10};
    for (const Book* book : {&nothing, &nobody, &certain}) {
        const double amount = book == &certain ? 50 : 0;
        for (const double u : {0.0, 0.3, 1.0}) EXPECT_EQ(book->quantile(u), amount);
        EXPECT_EQ(book->at(amount, false), 1);
        EXPECT_EQ(book->at(amount, true, true), 0);
        EXPECT_EQ(book->at(amount + 1, false), 0);
        EXPECT_EQ(book->at(amount - 1, true, true), -DBL_MAX);
    }
    double out = 7;
    ASSERT_TRUE(nothing.value(&out, nullptr));
    EXPECT_EQ(out, 0);
}

TEST(DePril, RefusesInOrder) {
    const char* const probabilities = "Error: {probabilities} values must be in [0..1]";
    const char* const counts = "Error: {n} values must be an integer values >= 0 ";
    const struct {
        Book book;
        const char* message;
    } rows[] = {
        {{{1.2}, {2.5}, 0, -1}, probabilities},
        {{{0.5, -0.1}, {1, 1}}, probabilities},
        {{{0.5, kNaN}, {1, 1}}, probabilities},
        {{{0.5}, {2.5}, 0, -1}, counts},
        {{{0.5}, {1, -1}}, counts},
        {{{0.5}, {1, kNaN}}, counts},
        {{{0.5}, {HUGE_VAL}}, counts},
        {{{0.5}, {1}, 0, -1}, "Error: base must be >0"},
        {{{0.5}, {1}, kNaN}, "Error: base must be >0"},
        {{{0.5}, {1}, 1, -1}, "Error: K must be >0 or ommited."},
        {{{}, {}}, "Error: q must not be empty"},
        {{{0.5}, {}}, "Error: policies must not be empty"},
        {{{0.5}, {1e300}}, "Error: the portfolio is too large"},
        {{{0.5}, {1e300}, 1, 2}, "Error: the portfolio is too large"},
        {{{0.999}, {400}, 1, 350}, "Error: the recursion leaves the range of numbers"},
        // A huge q says nothing about the amounts that no policy has.
        {{{DBL_MAX, 0.1}, {1, 0, 2, 3}}, "Error: the portfolio is too large"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.book.refusal(), row.message);
    double out = 7, q = 0.5;
    EXPECT_FALSE(PralAggregateDePril_Core(&out, nullptr, &q, 1, 1, 1, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: q must not be null");
    EXPECT_FALSE(PralAggregateDePril_Core(&out, &q, nullptr, 1, 1, 1, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: policies must not be null");
    // Only the smallest q is held against 1.
    double bad_u = 1.5;
    const Book above{{0.5, 1.2}, {1, 1}};
    EXPECT_FALSE(above.value(&out, &bad_u));
    EXPECT_STRNE(PralCoreError(), probabilities);
    EXPECT_FALSE((Book{{0.5}, {3}}).value(&out, &bad_u));
    EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]");
}

/// Whatever the arguments, every call ends, soon, with a finite number or a message.
TEST(DePril, HostilePortfolios) {
    for (const double q : {5e-324, 1e-17, 0.5, 1 - 0x1p-53, 1.0}) {
        for (const double n : {1.0, 1e5, 1e15, DBL_MAX}) {
            for (const int order : {0, 1, 1000, 2147483647}) {
                const Book book{{q, 0.25}, {n, 0, 1, 1}, 1e300, order};
                double out = 0;
                const double u = 0.5;
                book.value(&out, &u);
                EXPECT_TRUE(std::isfinite(out));
                book.probability(&out, 1e300, true, true);
                EXPECT_TRUE(std::isfinite(out));
            }
        }
    }
}

TEST(DePril, StoreTellsPortfoliosApart) {
    // Many portfolios, each asked twice: keys of 16 bits collide long before the last.
    std::vector<double> first;
    for (int round = 0; round < 2; ++round) {
        for (int k = 0; k < 1500; ++k) {
            const double median = Book{{0.25 + k * 1e-4}, {5, 1}}.quantile(0.5);
            if (round == 0)
                first.push_back(median);
            else
                EXPECT_EQ(median, first[static_cast<std::size_t>(k)]);
        }
    }
    for (std::size_t k = 1; k < first.size(); ++k) EXPECT_GT(first[k], first[k - 1]);
    // The same numbers in another shape, of another order.
    const Book wide{{0.25, 0.25}, {1, 2, 3, 4}}, narrow{{0.25, 0.25}, {1, 2, 3, 4}, 1, 1};
    EXPECT_NE(wide.quantile(0.5), narrow.quantile(0.5));
    EXPECT_NE((Book{{0.25}, {1, 2}}).quantile(0.5), (Book{{0.25, 1}, {2, 0}}).quantile(0.5));
}

TEST(DePril, KeyIsTheCommonOne) {
    std::array<std::byte, 9> digits;
    for (int i = 0; i < 9; ++i) digits[static_cast<std::size_t>(i)] = static_cast<std::byte>('1' + i);
    EXPECT_EQ(pral::crc16(digits), 0x29B1);
}

}  // namespace
