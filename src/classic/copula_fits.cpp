// The exported fits of copulas. A fit gives its parameters; with the uncertainty flag, those fitted to a synthetic
// data set of the same shape drawn from it.
#include <algorithm>
#include <cmath>

#include "classic/copulas.h"
#include "classic/core_api.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "matrix/matrix.h"
#include "multivariate/copula_fits.h"
#include "multivariate/empirical_copula.h"

using pral::fail;
using pral::given;
using pral::guarded;
using pral::Message;
using pral::random_stream;
using pral::succeeded;
using pral::with_locked_array;
using pral::classic::CutPiGumbel;
using pral::classic::guarded_vector;
using pral::multivariate::Clayton;
using pral::multivariate::EllipticalFit;
using pral::multivariate::Frank;
using pral::multivariate::PairFit;
using pral::multivariate::RankedData;

namespace {

/// Objects to NaN, which has no rank: as a tie with everything it would take the dependence for weaker than it is.
bool all_numbers(const double* data, std::size_t count) {
    const bool found = std::any_of(data, data + count, [](double value) { return std::isnan(value); });
    return !found || fail("Error: the data must be numbers");
}

/// Data as the exports get them: a matrix with a variable in each column, or in each row.
struct Table {
    const double* data;
    int rows, cols;
    bool in_rows;

    int variables() const { return in_rows ? rows : cols; }
    int observations() const { return in_rows ? cols : rows; }
    /// Of the correlation matrix.
    std::size_t elements() const { return pral::matrix::element_count(variables()); }

    Message check() const {
        if (variables() < 2) {
            return in_rows ? "if Data_In_Rows=true number of {data} columns must be >=2"
                           : "if Data_In_Rows=false, number of {data} rows must be >=2";
        }
        return observations() < 2 ? "Error: {data} array length must be >=2" : nullptr;
    }
    bool usable() const {
        return succeeded(check()) && given({{"data", data}}) &&
               all_numbers(data, static_cast<std::size_t>(rows) * cols);
    }
    RankedData ranked() const {
        return {pral::multivariate::by_variable(data, rows, cols, in_rows), variables()};
    }
};

/// Calls `body` with the data of an automation array that has room for `needed` elements; the table is looked at first.
template <class Body>
bool into_array(SAFEARRAY** array, std::size_t needed, const Table& table, Body body) {
    if (table.rows < 1 || table.cols < 1) return fail("Error: source array is not valid");
    return with_locked_array(array, [&](double* data, int size) {
        if (static_cast<std::size_t>(size) < needed) return fail(pral::kOutputArrayMessage);
        return body(data);
    });
}

/// Pairs one after another.
struct Pairs {
    const double* data;
    int count;

    bool usable() const {
        if (count < 2) return fail("Error: The number of copula pairs must be > 2");
        return given({{"pairs", data}}) && all_numbers(data, 2 * static_cast<std::size_t>(count));
    }
    Table table() const { return {data, count, 2, false}; }
};

// --------------------------------------------------------------------------------------- Archimedean copulas

/// The copula that the synthetic data of a classic fit of more variables are drawn from: for Frank's it is Clayton's, with
/// Frank's theta for its alpha.
template <class Copula>
struct SyntheticOf {
    using type = Copula;
};
template <>
struct SyntheticOf<Frank> {
    using type = Clayton;
};

template <class Copula>
double fit_all(const Table& table, bool uncertainty) {
    const double parameter = pral::multivariate::fit_all<Copula>(table.ranked());
    if (!uncertainty) return parameter;
    return pral::multivariate::fit_all<Copula>(
        pral::multivariate::replicate<typename SyntheticOf<Copula>::type>(
            parameter, table.variables(), table.observations(), random_stream()));
}

template <class Copula>
bool fit_all_parameter(double* parameter, const Table& table, int uncertainty) {
    return guarded(parameter, 1, [&](int) {
        if (!table.usable()) return false;
        *parameter = fit_all<Copula>(table, uncertainty != 0);
        return true;
    });
}

/// One sample of the fitted copula.
template <class Copula>
bool fit_all_sample(double* out, const Table& table, int uncertainty) {
    return guarded_vector(out, table.variables(), [&] {
        if (!table.usable()) return false;
        const double parameter = fit_all<Copula>(table, uncertainty != 0);
        pral::multivariate::sample<Copula>(parameter, table.variables(), 1, out, random_stream());
        return true;
    });
}

template <class Copula>
bool fit_all_sample(SAFEARRAY** out, const Table& table, int uncertainty) {
    return into_array(out, table.variables(), table,
                      [&](double* data) { return fit_all_sample<Copula>(data, table, uncertainty); });
}

/// The fit to pairs; the direction found is told to the caller who asked for one by 0.
template <class Copula>
bool fit_pair(PairFit& fit, int* direction, const Pairs& pairs, int uncertainty) {
    if (!pairs.usable()) return false;
    const int asked = direction != nullptr ? *direction : 0;
    if (asked != 0 && !succeeded(pral::multivariate::refuse_direction<Copula>(asked))) return false;
    fit = pral::multivariate::fit_pair<Copula>(pairs.table().ranked(), asked);
    if (uncertainty != 0) {
        if (!Copula::bivariate_range(fit.parameter)) return fail(Copula::kBivariate);
        const RankedData drawn = pral::multivariate::replicate<Copula>(fit, pairs.count, random_stream());
        fit = pral::multivariate::fit_pair<Copula>(drawn, fit.direction);
    }
    if (direction != nullptr) *direction = fit.direction;
    return true;
}

template <class Copula>
bool fit_pair_parameter(double* parameter, int* direction, const Pairs& pairs, int uncertainty) {
    return guarded(parameter, 1, [&](int) {
        PairFit fit;
        if (!fit_pair<Copula>(fit, direction, pairs, uncertainty)) return false;
        *parameter = fit.parameter;
        return true;
    });
}

template <class Copula>
bool fit_pair_sample(double* out, int* direction, const Pairs& pairs, int uncertainty) {
    return guarded_vector(out, 2, [&] {
        PairFit fit;
        if (!fit_pair<Copula>(fit, direction, pairs, uncertainty)) return false;
        if (!Copula::bivariate_range(fit.parameter)) return fail(Copula::kBivariate);
        pral::multivariate::sample<Copula>(fit.parameter, 2, 1, out, random_stream());
        pral::multivariate::apply_direction(fit.direction, out);
        return true;
    });
}

// ---------------------------------------------------------------------------------------- Elliptical copulas

bool fit_elliptical(EllipticalFit& fit, const Table& table, bool student, int uncertainty) {
    if (!table.usable()) return false;
    if (!succeeded(pral::multivariate::fit_elliptical(fit, table.ranked(), student))) return false;
    return uncertainty == 0 || succeeded(pral::multivariate::refit_elliptical(
                                   fit, table.variables(), table.observations(), random_stream()));
}

/// `nu` is null for the normal copula; the first `elements` correlations from `from` on are given.
bool fit_elliptical(double* nu, double* corr, std::size_t from, std::size_t elements, const Table& table,
                    int uncertainty) {
    EllipticalFit fit;
    if (!fit_elliptical(fit, table, nu != nullptr, uncertainty)) return false;
    if (nu != nullptr) *nu = fit.nu;
    std::copy_n(&fit.correlations[from], elements, corr);
    return true;
}

}  // namespace

#define PRAL_EXPORT_COPULA_FITS(X, TYPE)                                                                   \
    bool PralCopulaMulti##X##FitP_Core(double* parameter, const double* data, int rows, int cols,          \
                                       int dataInRows, int uncertainty) {                                  \
        return fit_all_parameter<TYPE>(parameter, {data, rows, cols, dataInRows != 0}, uncertainty);       \
    }                                                                                                      \
    bool PralCopulaMulti##X##Fit_Core(double* out, const double* data, int rows, int cols, int dataInRows, \
                                      int uncertainty) {                                                   \
        return fit_all_sample<TYPE>(out, {data, rows, cols, dataInRows != 0}, uncertainty);                \
    }                                                                                                      \
    bool PralCopulaMulti##X##FitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,           \
                                        int dataInRows, int uncertainty) {                                 \
        return fit_all_sample<TYPE>(out, {data, rows, cols, dataInRows != 0}, uncertainty);                \
    }                                                                                                      \
    bool PralCopulaBi##X##FitP_Core(double* parameter, int* direction, const double* pairs, int nPairs,    \
                                    int uncertainty) {                                                     \
        return fit_pair_parameter<TYPE>(parameter, direction, {pairs, nPairs}, uncertainty);               \
    }                                                                                                      \
    bool PralCopulaBi##X##Fit_Core(double* out, int* direction, const double* pairs, int nPairs,           \
                                   int uncertainty) {                                                      \
        return fit_pair_sample<TYPE>(out, direction, {pairs, nPairs}, uncertainty);                        \
    }                                                                                                      \
    static_assert(true)

PRAL_EXPORT_COPULA_FITS(Clayton, Clayton);
PRAL_EXPORT_COPULA_FITS(Gumbel, CutPiGumbel);
PRAL_EXPORT_COPULA_FITS(Frank, Frank);

bool PralCopulaBiNormalFitP_Core(double* rho, const double* pairs, int nPairs, int uncertainty) {
    const Pairs data{pairs, nPairs};
    return guarded(rho, 1, [&](int) {
        return data.usable() && fit_elliptical(nullptr, rho, 1, 1, data.table(), uncertainty);
    });
}

bool PralCopulaBiTFitP_Core(double* nu, double* rho, const double* pairs, int nPairs, int uncertainty) {
    const Pairs data{pairs, nPairs};
    return guarded(nu, 1, [&](int) {
        return guarded(rho, 1, [&](int) {
            return data.usable() && fit_elliptical(nu, rho, 1, 1, data.table(), uncertainty);
        });
    });
}

bool PralCopulaMultiNormalFitP_Core(double* corr, const double* data, int rows, int cols, int dataInRows,
                                    int uncertainty) {
    const Table table{data, rows, cols, dataInRows != 0};
    return guarded_vector(corr, table.elements(), [&] {
        return fit_elliptical(nullptr, corr, 0, table.elements(), table, uncertainty);
    });
}

bool PralCopulaMultiNormalFitPVB_Core(SAFEARRAY** corr, const double* data, int rows, int cols,
                                      int dataInRows, int uncertainty) {
    const Table table{data, rows, cols, dataInRows != 0};
    return into_array(corr, table.elements(), table, [&](double* elements) {
        return PralCopulaMultiNormalFitP_Core(elements, data, rows, cols, dataInRows, uncertainty);
    });
}

bool PralCopulaMultiTFitP_Core(double* nu, double* corr, const double* data, int rows, int cols,
                               int dataInRows, int uncertainty) {
    const Table table{data, rows, cols, dataInRows != 0};
    return guarded(nu, 1, [&](int) {
        return guarded_vector(corr, table.elements(), [&] {
            return fit_elliptical(nu, corr, 0, table.elements(), table, uncertainty);
        });
    });
}

bool PralCopulaMultiTFitPVB_Core(double* nu, SAFEARRAY** corr, const double* data, int rows, int cols,
                                 int dataInRows, int uncertainty) {
    const Table table{data, rows, cols, dataInRows != 0};
    return into_array(corr, table.elements(), table, [&](double* elements) {
        return PralCopulaMultiTFitP_Core(nu, elements, data, rows, cols, dataInRows, uncertainty);
    });
}
