// Classic calls through the companion's table: a made-up list stands for the header's, with the shapes that a family's
// parameters may have.
#include "classic_table.h"

#include <gtest/gtest.h>

#include "classic/core_api.h"

#undef PRAL_API
#define PRAL_API  // defined here, not imported

#define MADE_UP_FAMILIES                                                                      \
    PRAL_FAMILY(Plain, continuous, normal, (double a, double b, double c), "three numbers")   \
    PRAL_FAMILY(Tables, data, table,                                                          \
                (double Min, const double* t, int n, double Max, const double* w, int m), "") \
    PRAL_FAMILY(OneTable, data, table, (const double* values, int number), "")

#define PRAL_FAMILY PRAL_DECLARE_FAMILY
MADE_UP_FAMILIES
#undef PRAL_FAMILY

namespace {

/// What the last call was told, in order.
std::vector<double> told;

void tell(const double* x, int n) { told.insert(told.end(), x, x + n); }
void tell(const double* U, const int* mode, const double* min, const double* max, const double* shift) {
    const double pointers[] = {U ? *U : -99, mode ? static_cast<double>(*mode) : -99, *min, *max,
                               shift ? *shift : -99};
    tell(pointers, 5);
}

}  // namespace

// The array member of a made-up family writes down its arguments; TELL does so with the family's own.
#define DEFINE_ARRAY(X, PARAMETERS, TELL)                                                                  \
    bool Pral##X##Array_Core(double* out, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,  \
                             const int* mode, const double* min, const double* max, const double* shift) { \
        out[count - 1] = 2;                                                                                \
        TELL;                                                                                              \
        tell(U, mode, min, max, shift);                                                                    \
        return count < 4;                                                                                  \
    }

DEFINE_ARRAY(Plain, (double a, double b, double c), (told = {a, b, c}))
DEFINE_ARRAY(Tables, (double Min, const double* t, int n, double Max, const double* w, int m),
             (told = {Min, Max}, tell(t, n), tell(w, m)))
DEFINE_ARRAY(OneTable, (const double* values, int number), (told.clear(), tell(values, number)))

namespace {

const std::vector<cli::ClassicFamily> kFamilies = {
#define PRAL_FAMILY PRAL_FAMILY_ELEMENT
    MADE_UP_FAMILIES
#undef PRAL_FAMILY
};

using Values = std::vector<double>;

TEST(ClassicTable, EveryFamilyGetsItsParametersAndModifiers) {
    const struct {
        cli::Arguments given;
        Values told;
    } rows[] = {
        {{{1}, {2}, {3}}, {1, 2, 3}},
        {{{0}, {1, 2, 3}, {9}, {4, 5}}, {0, 9, 1, 2, 3, 4, 5}},  // tables of different lengths
        {{{7, 8}}, {7, 8}},
    };
    const cli::Modifiers modifiers = {.bounds_mode = 3, .bounds_min = 0.1, .bounds_max = 0.9, .shift = 5};
    const auto expect_told = [](Values own, const Values& modifier_values) {
        own.insert(own.end(), modifier_values.begin(), modifier_values.end());
        EXPECT_EQ(told, own);
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const cli::ClassicFamily& family = kFamilies[i];
        SCOPED_TRACE(family.name);
        double out[4] = {};
        EXPECT_TRUE(family.array(out, 3, rows[i].given, modifiers));
        expect_told(rows[i].told, {-99, 3, 0.1, 0.9, 5});
        EXPECT_EQ(out[2], 2);
        EXPECT_FALSE(family.array(out, 4, rows[i].given, {}));
        expect_told(rows[i].told, {-99, -99, -DBL_MAX, DBL_MAX, -99});
    }
}

TEST(ClassicTable, HoldsThePrototypesOfEveryMember) {
    ASSERT_EQ(kFamilies[1].prototypes.size(), 5u);
    EXPECT_EQ(
        kFamilies[2].prototypes[2],
        "bool PralOneTableArrayVB_Core(SAFEARRAY** out, const double* values, int number, const "
        "double* U, "
        "const int* boundsMode, const double* boundsMin, const double* boundsMax, const double* shift);");
}

}  // namespace
