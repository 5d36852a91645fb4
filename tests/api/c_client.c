/* The public headers read as C11: a family's five members called from C, and its list read a second time. */
#include <math.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "classic/automation.h"
#include "classic/core_api.h"

#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) #X,
static const char* const family_names[] = {
#include "classic/core_api.h"
};

static int failures = 0;

static void expect(bool condition, const char* what) {
    if (condition) return;
    printf("failed: %s (%s)\n", what, PralCoreError());
    ++failures;
}

int main(void) {
    double values[3] = {7, 7, 7};
    double at[2] = {0, 1};
    double result = 0;
    const double median = 0.5;
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, 3);

    expect(PralNormal_Core(&result, 3, 2, &median, NULL, NULL, NULL, NULL) && result == 3, "value");
    expect(PralNormalArray_Core(values, 3, 3, 2, &median, NULL, NULL, NULL, NULL) && values[2] == 3, "array");
    expect(PralNormalArrayVB_Core(&array, 3, 2, &median, NULL, NULL, NULL, NULL), "automation array");
    expect(memcmp(array->pvData, values, sizeof values) == 0, "automation array's values");
    /* the product of phi(0) and phi(1), and its logarithm */
    expect(PralNormalProb_Core(&result, at, 2, 0, 1, NULL, NULL, NULL, NULL, NULL), "density");
    expect(fabs(result / 0.096532352630053909 - 1) < 1e-15, "density's value");
    expect(PralNormalProb10_Core(&result, at, 2, 0, 1, NULL, NULL, NULL, NULL, NULL), "logarithm");
    expect(fabs(result / -1.0153271093097410 - 1) < 1e-15, "logarithm's value");
    expect(strcmp(family_names[0], "Normal") == 0, "list of families");
    SafeArrayDestroy(array);
    return failures == 0 ? 0 : 1;
}
