/* A project budget: what will it cost, and how much must be set aside to be 90 % sure?
 *
 * Four uncertain items, 10,000 iterations, as a spreadsheet would recalculate them: one call per cell and iteration.
 * Prints a histogram and percentiles, and ends with a verdict: the simulated mean against the exact one. */
#include <math.h>
#include <pral_core/core_api.h>
#include <stdio.h>
#include <stdlib.h>

enum { ITERATIONS = 10000, BARS = 20 };

static void must(bool ok) {
    if (ok) return;
    fprintf(stderr, "budget: %s\n", PralCoreError());
    exit(1);
}

/* One recalculation of the model, in thousands. */
static double total_cost(void) {
    const int by_value = 0, max_by_percentile = 1;
    const double no_less_than = 350, no_more_than = 700; /* the contract caps the labour cost */
    const double nothing = 0, worst_case = 0.99;
    const double mobilisation = 40;
    double labour, material, delay, claims;
    must(PralNormal_Core(&labour, 500, 80, NULL, &by_value, &no_less_than, &no_more_than, NULL));
    must(PralUniform_Core(&material, 180, 260, NULL, NULL, NULL, NULL, &mobilisation));
    must(PralExpon_Core(&delay, 60, NULL, NULL, NULL, NULL, NULL));
    must(PralExpon_Core(&claims, 25, NULL, &max_by_percentile, &nothing, &worst_case, NULL));
    return labour + material + delay + claims;
}

static int ascending(const void* a, const void* b) {
    const double x = *(const double*)a, y = *(const double*)b;
    return (x > y) - (x < y);
}

/* The mean of a normal kept on [min, max] and of an exponential kept below its percentile p, from textbooks. */
static double truncated_normal_mean(double mu, double sigma, double min, double max) {
    const int cumulative = 1;
    double a = (min - mu) / sigma, b = (max - mu) / sigma, density_a, density_b, below_a, below_b;
    must(PralNormalProb_Core(&density_a, &a, 1, 0, 1, NULL, NULL, NULL, NULL, NULL));
    must(PralNormalProb_Core(&density_b, &b, 1, 0, 1, NULL, NULL, NULL, NULL, NULL));
    must(PralNormalProb_Core(&below_a, &a, 1, 0, 1, &cumulative, NULL, NULL, NULL, NULL));
    must(PralNormalProb_Core(&below_b, &b, 1, 0, 1, &cumulative, NULL, NULL, NULL, NULL));
    return mu + sigma * (density_a - density_b) / (below_b - below_a);
}

static double truncated_exponential_mean(double beta, double p) {
    return beta * (1 + log(1 - p) * (1 - p) / p);
}

static void histogram(const double* sorted) {
    const double low = sorted[0], width = (sorted[ITERATIONS - 1] - low) / BARS;
    int next = 0, counts[BARS] = {0}, tallest = 0;
    for (int bar = 0; bar < BARS; ++bar) {
        while (next < ITERATIONS && (bar == BARS - 1 || sorted[next] < low + (bar + 1) * width)) {
            ++counts[bar];
            ++next;
        }
        if (counts[bar] > tallest) tallest = counts[bar];
    }
    for (int bar = 0; bar < BARS; ++bar) {
        printf("  %7.0f |", low + bar * width);
        for (int mark = 0; mark < counts[bar] * 60 / tallest; ++mark) putchar('#');
        printf(" %d\n", counts[bar]);
    }
}

int main(void) {
    static double cost[ITERATIONS];
    double sum = 0, squares = 0;

    printf("pral_core %s: a project budget, %d iterations (thousands)\n\n", PralVersion(), ITERATIONS);
    PralSetRandomSeed(20);
    for (int i = 0; i < ITERATIONS; ++i) {
        cost[i] = total_cost();
        sum += cost[i];
        squares += cost[i] * cost[i];
    }
    qsort(cost, ITERATIONS, sizeof *cost, ascending);
    histogram(cost);

    printf("\n  percentile     cost\n");
    const int percents[] = {5, 10, 25, 50, 75, 90, 95, 99};
    for (size_t i = 0; i < sizeof percents / sizeof *percents; ++i)
        printf("  %6d %%   %9.1f\n", percents[i], cost[percents[i] * ITERATIONS / 100]);

    const double mean = sum / ITERATIONS;
    const double error = sqrt((squares / ITERATIONS - mean * mean) / ITERATIONS);
    const double exact = truncated_normal_mean(500, 80, 350, 700) + (180 + 260) / 2.0 + 40 + 60 +
                         truncated_exponential_mean(25, 0.99);
    const bool agrees = fabs(mean - exact) < 4 * error;
    printf("\n  mean %.1f +- %.1f, exactly %.1f\n", mean, error, exact);
    printf("\nSet aside %.0f to be 90 %% sure.\n", cost[90 * ITERATIONS / 100]);
    printf("%s\n", agrees ? "The simulated mean agrees with the exact one."
                          : "WRONG: the simulated mean is off the exact one.");
    return agrees ? 0 : 1;
}
