// The exported fits of copulas. A fit gives its parameters; with the uncertainty flag, those fitted to a synthetic
// data set of the same shape drawn from it.
#include <algorithm>
#include <cmath>
#include <utility>

#include "boundary/core_api.h"
#include "matrix/matrix.h"
#include "multivariate/copula_fits.h"
#include "multivariate/empirical_copula.h"
#include "multivariate/vector_call.h"

using pral::fail;
using pral::given;
using pral::guarded;
using pral::Message;
using pral::random_stream;
using pral::succeeded;
using pral::with_locked_array;
using pral::multivariate::Clayton;
using pral::multivariate::CovarianceFactor;
using pral::multivariate::Frank;
using pral::multivariate::guarded_vector;
using pral::multivariate::Gumbel;
using pral::multivariate::PairFit;
using pral::multivariate::RankedData;
using pral::multivariate::StudentCopula;

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

/// Samples one after another, as data of d variables.
RankedData ranked(const std::vector<double>& samples, int d) {
    const int count = static_cast<int>(samples.size() / static_cast<std::size_t>(d));
    return {pral::multivariate::by_variable(samples.data(), count, d, false), d};
}

std::vector<double> room(int d, int count) {
    return std::vector<double>(static_cast<std::size_t>(d) * count);
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

/// The copula that the synthetic data are drawn from: Frank's come from Clayton with Frank's theta, and always have.
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
    std::vector<double> samples = room(table.variables(), table.observations());
    pral::multivariate::sample<typename SyntheticOf<Copula>::type>(
        parameter, table.variables(), table.observations(), samples.data(), random_stream());
    return pral::multivariate::fit_all<Copula>(ranked(samples, table.variables()));
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
        std::vector<double> samples = room(2, pairs.count);
        pral::multivariate::sample<Copula>(fit.parameter, 2, pairs.count, samples.data(), random_stream());
        for (std::size_t i = 0; i < samples.size(); i += 2)
            pral::multivariate::apply_direction(fit.direction, &samples[i]);
        fit = pral::multivariate::fit_pair<Copula>(ranked(samples, 2), fit.direction);
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

/// The fitted correlations and, of the t copula, degrees of freedom (0: the normal copula).
struct EllipticalFit {
    int nu;
    std::vector<double> correlations;
};

bool fit_once(EllipticalFit& fit, const RankedData& data, bool student) {
    fit.correlations = pral::multivariate::fit_correlations(data);
    if (fit.correlations.empty()) return fail("Error: the correlation matrix cannot be repaired");
    fit.nu = student ? pral::multivariate::fit_degrees(data, fit.correlations) : 0;
    return true;
}

bool fit_elliptical(EllipticalFit& fit, const Table& table, bool student, int uncertainty) {
    if (!table.usable() || !fit_once(fit, table.ranked(), student)) return false;
    if (uncertainty == 0) return true;
    CovarianceFactor factor;
    if (!succeeded(factor.factorise(fit.correlations.data(), table.variables()))) return false;
    std::vector<double> samples = room(table.variables(), table.observations());
    if (!student)
        pral::multivariate::sample_normal_copula(factor, table.observations(), samples.data(),
                                                 random_stream());
    else if (!StudentCopula(fit.nu, factor).sample(table.observations(), samples.data(), random_stream()))
        return false;
    return fit_once(fit, ranked(samples, table.variables()), student);
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

bool PralCopulaMultiClaytonFitP_Core(double* alpha, const double* data, int rows, int cols, int dataInRows,
                                     int uncertainty) {
    return fit_all_parameter<Clayton>(alpha, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiGumbelFitP_Core(double* theta, const double* data, int rows, int cols, int dataInRows,
                                    int uncertainty) {
    return fit_all_parameter<Gumbel>(theta, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiFrankFitP_Core(double* theta, const double* data, int rows, int cols, int dataInRows,
                                   int uncertainty) {
    return fit_all_parameter<Frank>(theta, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiClaytonFit_Core(double* out, const double* data, int rows, int cols, int dataInRows,
                                    int uncertainty) {
    return fit_all_sample<Clayton>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiClaytonFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows,
                                      int uncertainty) {
    return fit_all_sample<Clayton>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiGumbelFit_Core(double* out, const double* data, int rows, int cols, int dataInRows,
                                   int uncertainty) {
    return fit_all_sample<Gumbel>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiGumbelFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows,
                                     int uncertainty) {
    return fit_all_sample<Gumbel>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiFrankFit_Core(double* out, const double* data, int rows, int cols, int dataInRows,
                                  int uncertainty) {
    return fit_all_sample<Frank>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaMultiFrankFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows,
                                    int uncertainty) {
    return fit_all_sample<Frank>(out, {data, rows, cols, dataInRows != 0}, uncertainty);
}

bool PralCopulaBiClaytonFitP_Core(double* alpha, int* direction, const double* pairs, int nPairs,
                                  int uncertainty) {
    return fit_pair_parameter<Clayton>(alpha, direction, {pairs, nPairs}, uncertainty);
}

bool PralCopulaBiGumbelFitP_Core(double* theta, int* direction, const double* pairs, int nPairs,
                                 int uncertainty) {
    return fit_pair_parameter<Gumbel>(theta, direction, {pairs, nPairs}, uncertainty);
}

bool PralCopulaBiFrankFitP_Core(double* theta, int* direction, const double* pairs, int nPairs,
                                int uncertainty) {
    return fit_pair_parameter<Frank>(theta, direction, {pairs, nPairs}, uncertainty);
}

bool PralCopulaBiClaytonFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                                 int uncertainty) {
    return fit_pair_sample<Clayton>(out, direction, {pairs, nPairs}, uncertainty);
}

bool PralCopulaBiGumbelFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                                int uncertainty) {
    return fit_pair_sample<Gumbel>(out, direction, {pairs, nPairs}, uncertainty);
}

bool PralCopulaBiFrankFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                               int uncertainty) {
    return fit_pair_sample<Frank>(out, direction, {pairs, nPairs}, uncertainty);
}

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
