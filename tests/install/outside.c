/* A caller of the installed library: one quantile, and the text of a failure. */
#include <pral_core/core_api.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    double value = 0;
    const double percentile = 0.975;
    if (!PralNormal_Core(&value, 10, 2, &percentile, NULL, NULL, NULL, NULL)) return 1;
    printf("%.15g\n", value);
    if (value < 13.919927969080 || value > 13.919927969081) return 2; /* 10 + 2 * 1.95996398454005424 */
    if (PralNormal_Core(&value, 10, -2, &percentile, NULL, NULL, NULL, NULL)) return 3;
    puts(PralCoreError());
    return strcmp(PralCoreError(), "Error: sigma must be >= 0") == 0 ? 0 : 4;
}
