// The calling convention as a caller meets it: error text, automation arrays and strings, missing buffers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <string>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"

namespace {

std::string automation_text() {
    BSTR text = PralCoreErrorVB();
    std::string narrow;
    for (unsigned i = 0; i < SysStringLen(text); ++i) narrow.push_back(static_cast<char>(text[i]));
    SysFreeString(text);
    return narrow;
}

TEST(Boundary, ErrorTextIsKeptUntilOverwritten) {
    double value = 7;
    ASSERT_FALSE(PralNormal_Core(&value, 0, -1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(value, 0);
    EXPECT_STREQ(PralCoreError(), "Error: sigma must be >= 0");
    EXPECT_EQ(automation_text(), "Error: sigma must be >= 0");
    ASSERT_TRUE(PralNormal_Core(&value, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: sigma must be >= 0");
    PralSetCoreError("");
    EXPECT_STREQ(PralCoreError(), "");
    EXPECT_EQ(automation_text(), "");
    PralSetCoreError(std::string(5000, 'x').c_str());
    EXPECT_EQ(PralCoreError(), std::string(1023, 'x'));
    EXPECT_EQ(automation_text(), std::string(1023, 'x'));
    PralSetCoreError(PralCoreError() + 1000);
    EXPECT_EQ(PralCoreError(), std::string(23, 'x'));
    PralSetCoreError(nullptr);
    EXPECT_STREQ(PralCoreError(), "");
}

bool fill_normal(SAFEARRAY** array) {
    return PralNormalArrayVB_Core(array, 10, 2, nullptr, nullptr, nullptr, nullptr, nullptr);
}

TEST(Boundary, AutomationArrayEqualsPlainArray) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 1, 1000);
    std::vector<double> plain(1000);
    PralSetRandomSeed(3);
    ASSERT_TRUE(fill_normal(&array));
    PralSetRandomSeed(3);
    ASSERT_TRUE(PralNormalArray_Core(plain.data(), 1000, 10, 2, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), static_cast<double*>(array->pvData)));
    EXPECT_EQ(array->cLocks, 0u);
    const double wrong = 2;
    EXPECT_FALSE(PralNormalArrayVB_Core(&array, 10, 2, &wrong, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(array->cLocks, 0u);
    SafeArrayDestroy(array);
}

TEST(Boundary, RefusesOtherAutomationArrays) {
    SAFEARRAYBOUND square[2] = {{3, 0}, {3, 0}};
    SAFEARRAY* const arrays[] = {nullptr, SafeArrayCreate(VT_R8, 2, square),
                                 SafeArrayCreateVector(VT_R4, 0, 5)};
    for (SAFEARRAY* array : arrays) {
        PralSetCoreError("");
        EXPECT_FALSE(fill_normal(&array));
        EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
        if (array != nullptr) {
            EXPECT_EQ(array->cLocks, 0u);
        }
        SafeArrayDestroy(array);
    }
    PralSetCoreError("");
    EXPECT_FALSE(fill_normal(nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
}

TEST(Boundary, MissingBuffersFailAndNegativeCountsAreNone) {
    double value = 7, x = 0;
    EXPECT_FALSE(PralNormal_Core(nullptr, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: out must not be null");
    EXPECT_FALSE(PralNormalArray_Core(nullptr, 3, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(PralNormalArray_Core(nullptr, 0, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(PralNormalArray_Core(&value, -5, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(PralNormalProb_Core(&value, nullptr, 1, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: x must not be null");
    EXPECT_FALSE(PralNormalProb_Core(nullptr, &x, 1, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    // Of no values the joint probability is that of the empty product.
    EXPECT_TRUE(PralNormalProb_Core(&value, nullptr, -1, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(value, 1);
}

TEST(Boundary, ArraysAreZeroedBeforeTheChecks) {
    std::vector<double> values(4, 5.0);
    EXPECT_FALSE(PralNormalArray_Core(values.data(), 4, 0, -1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(values, std::vector<double>(4, 0.0));
}

TEST(Boundary, VersionIsTold) { EXPECT_STREQ(PralVersion(), "1.0.0"); }

}  // namespace
