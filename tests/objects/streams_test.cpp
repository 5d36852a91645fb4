// Streams of the second door: NumPy's words bit for bit, children, positions that can be saved, designs of the cube.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "support/table.h"

namespace {

using pral::Stream;
using pral::test::table;

std::vector<std::uint64_t> words(const std::string& cell) {
    std::vector<std::uint64_t> all;
    std::istringstream stream(cell == "-" ? "" : cell);
    for (std::uint64_t word; stream >> word;) all.push_back(word);
    return all;
}

double uniform(std::uint64_t word) { return (static_cast<double>(word >> 12) + 0.5) * 0x1p-52; }

std::vector<double> drawn(Stream& stream, std::size_t n) {
    std::vector<double> values(n);
    stream.fill(values);
    return values;
}
std::vector<double> first(Stream stream, std::size_t n) { return drawn(stream, n); }

TEST(Streams, AreThoseOfNumPy) {
    for (const auto& row : table("reference/objects/streams.tsv")) {
        Stream stream(words(row.at(0)));
        for (const std::uint64_t id : words(row.at(1))) stream = stream.child(id);
        const auto expected = words(row.at(2));
        for (const std::uint64_t word : expected)
            EXPECT_EQ(drawn(stream, 1)[0], uniform(word)) << row[0] << " / " << row[1];
        EXPECT_EQ(drawn(stream, 1000 - expected.size() + 1).back(), uniform(words(row.at(3))[0]));
    }
}

TEST(Streams, GiveTheSameNumbersInAnyPortions) {
    const std::vector<double> whole = first(Stream(3), 200);
    Stream stream(3);
    std::vector<double> parts;
    for (std::size_t portion = 0; parts.size() + portion < 150; ++portion) {
        for (const double value : drawn(stream, portion)) parts.push_back(value);
    }
    EXPECT_TRUE(std::equal(parts.begin(), parts.end(), whole.begin()));
}

TEST(Streams, GoOnFromACopyAndFromASavedState) {
    for (std::size_t before = 0; before < 9; ++before) {
        Stream stream = Stream(7).child(3).child("worker");
        drawn(stream, before);
        Stream copy = stream.copy(), restored = Stream::restored(stream.state());
        const std::vector<double> expected = drawn(stream, 10);
        EXPECT_EQ(drawn(copy, 10), expected);
        EXPECT_EQ(drawn(restored, 10), expected);
        EXPECT_EQ(first(restored.child(1), 3), first(stream.child(1), 3));
    }
}

TEST(Streams, ChildrenDependOnTheirNamesAlone) {
    Stream parent(11);
    const std::vector<double> before = first(parent.child(5), 4);
    drawn(parent, 1001);
    EXPECT_EQ(first(parent.child(5), 4), before);
    // Numbers, names, and paths that could be taken for one another.
    std::set<std::vector<double>> all;
    std::size_t made = 0;
    const auto add = [&](Stream stream) { all.insert(first(std::move(stream), 2)), ++made; };
    for (std::uint64_t i = 0; i < 100; ++i) {
        add(parent.child(i));
        add(parent.child(0).child(i));
        add(parent.child(std::to_string(i)));
    }
    for (const char* name : {"", "a", "b", "ab", "a ", "abcd", "abcde"}) add(parent.child(std::string(name)));
    EXPECT_EQ(all.size(), made);
    EXPECT_THROW(parent.child(4294967295u), pral::Error);
}

TEST(Streams, TenThousandChildrenAreUniformAndIndependent) {
    constexpr std::size_t kChildren = 10000, kCells = 10;
    const Stream parent(2026);
    std::vector<double> values(kChildren);
    for (std::size_t i = 0; i < kChildren; ++i) values[i] = first(parent.child(i), 1)[0];
    // Chi-square of single numbers, and of pairs of neighbours in a grid: 4.9 standard deviations.
    const auto chi_square = [](const std::vector<double>& counts) {
        double sum = 0, expected = 0;
        for (const double count : counts) expected += count / static_cast<double>(counts.size());
        for (const double count : counts) sum += (count - expected) * (count - expected) / expected;
        const double freedom = static_cast<double>(counts.size()) - 1;
        return std::fabs(sum - freedom) / std::sqrt(2 * freedom);
    };
    std::vector<double> single(kCells), pairs(kCells * kCells);
    const auto cell = [](double u) { return static_cast<std::size_t>(u * kCells); };
    for (std::size_t i = 0; i < kChildren; ++i) {
        ++single[cell(values[i])];
        if (i > 0) ++pairs[cell(values[i - 1]) * kCells + cell(values[i])];
    }
    EXPECT_LT(chi_square(single), 4.9);
    EXPECT_LT(chi_square(pairs), 4.9);
}

TEST(Streams, RefuseWhatIsNoSavedState) {
    const std::vector<std::uint64_t> good = Stream(1).state();
    for (std::size_t i = 0; i < 3; ++i) {
        std::vector<std::uint64_t> bad = good;
        bad[i] ^= std::uint64_t{1} << 60;
        EXPECT_THROW(Stream::restored(bad), pral::Error);
    }
    for (std::size_t n = 0; n < good.size(); ++n)
        EXPECT_THROW(Stream::restored(std::span(good).first(n)), pral::Error);
}

/// The points' coordinates on one axis, in order.
std::vector<double> axis(const std::vector<double>& points, std::size_t dimensions, std::size_t number) {
    std::vector<double> values;
    for (std::size_t i = number; i < points.size(); i += dimensions) values.push_back(points[i]);
    std::ranges::sort(values);
    return values;
}
void expect_one_in_each_slice(const std::vector<double>& points, std::size_t dimensions) {
    for (std::size_t j = 0; j < dimensions; ++j) {
        const std::vector<double> values = axis(points, dimensions, j);
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_EQ(static_cast<std::size_t>(values[i] * static_cast<double>(values.size())), i);
    }
}

TEST(Streams, DesignsFillTheCube) {
    Stream stream(5);
    expect_one_in_each_slice(pral::points(PRAL_LATIN_HYPERCUBE, &stream, 37, 3), 3);
    expect_one_in_each_slice(pral::points(PRAL_SOBOL, nullptr, 64, 40), 40);
    expect_one_in_each_slice(pral::points(PRAL_SOBOL, &stream, 64, 40), 40);
    // One in each of 5 x 5 x 5 cells.
    std::set<std::vector<int>> cells;
    const std::vector<double> grid = pral::points(PRAL_STRATIFIED, &stream, 125, 3);
    for (std::size_t i = 0; i < grid.size(); i += 3)
        cells.insert({int(grid[i] * 5), int(grid[i + 1] * 5), int(grid[i + 2] * 5)});
    EXPECT_EQ(cells.size(), 125u);
    // Sobol's points in 3 dimensions as Joe and Kuo (2008) give them, up to the half slice that keeps them off the edge.
    const std::vector<double> sobol = pral::points(PRAL_SOBOL, nullptr, 4, 3);
    const double expected[] = {0, 0, 0, .5, .5, .5};
    for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(sobol[i], expected[i] + 0.125);
    // Halton in bases 2 and 3: 1/2 1/3, 1/4 2/3, 3/4 1/9.
    const std::vector<double> halton = pral::points(PRAL_HALTON, nullptr, 4, 2);
    const double radical[] = {0, 0, 1. / 2, 1. / 3, 1. / 4, 2. / 3, 3. / 4, 1. / 9};
    for (std::size_t i = 0; i < std::size(radical); ++i)
        EXPECT_DOUBLE_EQ(halton[i], std::fmod(radical[i] + 0.125, 1));
    for (const std::int32_t design : {PRAL_SOBOL, PRAL_HALTON}) {
        for (const double u : pral::points(design, &stream, 1000, 7)) EXPECT_TRUE(u > 0 && u < 1);
    }
    EXPECT_THROW(pral::points(PRAL_STRATIFIED, &stream, 124, 3), pral::Error);
    EXPECT_THROW(pral::points(PRAL_SOBOL, nullptr, 8, 41), pral::Error);
    EXPECT_THROW(pral::points(PRAL_LATIN_HYPERCUBE, nullptr, 8, 2), pral::Error);
    EXPECT_THROW(pral::points(99, &stream, 8, 2), pral::Error);
}

}  // namespace
