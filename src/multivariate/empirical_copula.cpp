#include "multivariate/empirical_copula.h"

#include "statistics/ranks.h"
#include "statistics/resampling.h"

namespace pral::multivariate {

std::vector<double> by_variable(const double* data, int rows, int cols, bool variables_in_rows) {
    const std::size_t height = rows, width = cols;
    std::vector<double> result(data, data + height * width);
    if (variables_in_rows) return result;
    for (std::size_t i = 0; i < height; ++i) {
        for (std::size_t j = 0; j < width; ++j) result[j * height + i] = data[i * width + j];
    }
    return result;
}

EmpiricalCopula::EmpiricalCopula(const std::vector<double>& by_variable, int d)
    : d_(d), observations_(by_variable.size() / d_), cells_(by_variable.size()) {
    const double m = static_cast<double>(observations_);
    for (std::size_t j = 0; j < d_; ++j) {
        const auto sorted = statistics::sorted({&by_variable[j * observations_], observations_});
        for (std::size_t begin = 0, end = 0; begin < observations_; begin = end) {
            for (end = begin + 1;
                 end < observations_ && statistics::same_value(sorted[end - 1], sorted[end]);)
                ++end;
            for (std::size_t i = begin; i < end; ++i) {
                cells_[sorted[i].index * d_ + j] = {static_cast<double>(begin) / m,
                                                    static_cast<double>(end - begin) / m};
            }
        }
    }
}

void EmpiricalCopula::sample(int count, bool series, double* out, RandomStream& stream) const {
    std::size_t observation = 0;
    for (int s = 0; s < count; ++s) {
        if (s == 0 || !series)
            observation = statistics::draw_index(observations_, stream);
        else
            observation = (observation + 1) % observations_;
        const Cell* cell = &cells_[observation * d_];
        for (std::size_t j = 0; j < d_; ++j) *out++ = cell[j].low + cell[j].width * stream.uniform();
    }
}

}  // namespace pral::multivariate
