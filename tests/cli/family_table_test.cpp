// Calls of families through the companion's table: a made-up list stands for the header's, with the shapes that a family's
// parameters may have.
#include "family_table.h"

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

// Each member of a made-up family writes down its arguments; TELL does so with the family's own.
#define DEFINE_MEMBERS(X, PARAMETERS, TELL)                                                                \
    bool Pral##X##_Core(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U, const int* mode, \
                        const double* min, const double* max, const double* shift) {                       \
        *out = 1;                                                                                          \
        TELL;                                                                                              \
        tell(U, mode, min, max, shift);                                                                    \
        return true;                                                                                       \
    }                                                                                                      \
    bool Pral##X##Array_Core(double* out, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,  \
                             const int* mode, const double* min, const double* max, const double* shift) { \
        out[count - 1] = 2;                                                                                \
        TELL;                                                                                              \
        tell(U, mode, min, max, shift);                                                                    \
        return true;                                                                                       \
    }                                                                                                      \
    bool Pral##X##Prob_Core(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,         \
                            const int* cumulative, const int* mode, const double* min, const double* max,  \
                            const double* shift) {                                                         \
        *out = x[count - 1] + *cumulative;                                                                 \
        TELL;                                                                                              \
        tell(nullptr, mode, min, max, shift);                                                              \
        return true;                                                                                       \
    }                                                                                                      \
    bool Pral##X##Prob10_Core(double*, double*, int, PRAL_REMOVE_PARENTHESES PARAMETERS, const int*,       \
                              const int*, const double*, const double*, const double*) {                   \
        TELL;                                                                                              \
        return false;                                                                                      \
    }

DEFINE_MEMBERS(Plain, (double a, double b, double c), (told = {a, b, c}))
DEFINE_MEMBERS(Tables, (double Min, const double* t, int n, double Max, const double* w, int m),
               (told = {Min, Max}, tell(t, n), tell(w, m)))
DEFINE_MEMBERS(OneTable, (const double* values, int number), (told.clear(), tell(values, number)))

namespace {

const std::vector<cli::Family> kFamilies = {
#define PRAL_FAMILY PRAL_FAMILY_ELEMENT
    MADE_UP_FAMILIES
#undef PRAL_FAMILY
};

using Values = std::vector<double>;

TEST(FamilyTable, EveryMemberGetsItsParametersAndModifiers) {
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
        const cli::Family& family = kFamilies[i];
        SCOPED_TRACE(family.name);
        double out[4] = {}, x[2] = {10, 20};
        const double u = 0.5;
        const int cumulative = 1;
        EXPECT_TRUE(family.value(out, rows[i].given, &u, modifiers));
        expect_told(rows[i].told, {0.5, 3, 0.1, 0.9, 5});
        EXPECT_EQ(out[0], 1);
        EXPECT_TRUE(family.array(out, 4, rows[i].given, {}));
        expect_told(rows[i].told, {-99, -99, -DBL_MAX, DBL_MAX, -99});
        EXPECT_EQ(out[3], 2);
        EXPECT_TRUE(family.probability(out, x, 2, rows[i].given, &cumulative, modifiers));
        expect_told(rows[i].told, {-99, 3, 0.1, 0.9, 5});
        EXPECT_EQ(out[0], 21);
        EXPECT_FALSE(family.log10_probability(out, x, 2, rows[i].given, &cumulative, modifiers));
        EXPECT_EQ(told, rows[i].told);
    }
}

TEST(FamilyTable, TellsNamesTablesAndPrototypes) {
    const cli::Family& tables = kFamilies[1];
    EXPECT_EQ(tables.name, "Tables");
    EXPECT_EQ(tables.kind, "data");
    std::string names;
    for (const auto& parameter : tables.parameters)
        names += parameter.name + (parameter.is_table ? "[] " : " ");
    EXPECT_EQ(names, "Min t[] Max w[] ");
    ASSERT_EQ(tables.prototypes.size(), 5u);
    EXPECT_EQ(
        kFamilies[2].prototypes[2],
        "bool PralOneTableArrayVB_Core(SAFEARRAY** out, const double* values, int number, const "
        "double* U, "
        "const int* boundsMode, const double* boundsMin, const double* boundsMax, const double* shift);");
}

}  // namespace
