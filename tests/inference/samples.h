// Data of published fits.
#pragma once

#include <vector>

namespace samples {

/// Lockhart and Stephens (1994): A has an inner maximum of the three-parameter Weibull likelihood, B has none.
inline const std::vector<double> kLockhartA = {225, 171, 198, 189, 189, 135, 162, 135, 117, 162};
inline const std::vector<double> kLockhartB = {74, 57,  48, 29, 502, 12, 70, 21,
                                               29, 386, 59, 27, 153, 26, 326};
/// Dumonceaux and Antle (1973), flood levels.
inline const std::vector<double> kFloods = {.654, .613, .315, .449, .297, .402, .379, .423, .379, .324,
                                            .269, .740, .418, .412, .494, .416, .338, .392, .484, .265};
/// Proschan (1963), hours between failures of the air conditioning of aeroplane 7912.
inline const std::vector<double> kAeroplane = {23, 261, 87, 7, 120, 14, 62, 47, 225, 71, 246, 21, 42, 20, 5,
                                               12, 120, 11, 3, 14,  71, 11, 14, 11,  16, 90,  1,  16, 52, 95};
/// Fromont et al. (2001), parasites in cats: the counts, and how many cats had them.
inline const std::vector<double> kToxocara = {0,  1,  2,  3,  4,  5,  6,  7,  9,  11, 12,
                                              16, 19, 20, 21, 28, 30, 33, 40, 41, 75};
inline const std::vector<double> kToxocaraTimes = {14, 8, 5, 1, 6, 2, 1, 1, 2, 1, 1,
                                                   1,  1, 1, 1, 2, 1, 1, 1, 1, 1};
/// Ten numbers for which the values of the tests were computed with 30 digits (mpmath).
inline const std::vector<double> kTen = {0.8, 1.9, 2.4, 3.3, 3.9, 4.4, 5.2, 6.1, 7.7, 9.6};

}  // namespace samples
