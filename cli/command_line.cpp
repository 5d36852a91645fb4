// How commands and options are spelt, and what the help says.
// The only file that includes CLI11, which is slow to compile.
#include "command_line.h"

#include <fmt/format.h>
#include <pral_core/core_api.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "arguments.h"
#include "commands.h"
#include "errors.h"
#include "text.h"

namespace cli {

namespace {

constexpr const char* kFooter = R"(Examples:
  pral list --search exponential
  pral describe Gamma
  pral describe "Gamma(2, 3) within [1, 9] + 10"
  pral sample Normal 500 80 -n 5 --min 350 --max 700 --seed 7
  pral quantile Normal 0 1 0.05 0.95
  pral prob Normal 0 1 1.96 --survival --format json
  pral fit losses.csv --top 5

"pral COMMAND --help" tells more about each.
Exit codes: 0 success; 1 the library refused (its error text is on the standard
error); 2 wrong usage.)";

constexpr const char* kDistributionFooter = R"help(
Distributions
  A family's name and its parameters, in the order of "pral describe FAMILY":
    Gamma 2 3
  Tables are comma lists, 1,2.5,4, or columns, @FILE.csv:COLUMN, by name or
  number; @- is the standard input.
  Or one text in quotes:
    "Gamma(alpha = 2, beta = 3)"    "Discrete({1, 2, 3}, {0.2, 0.5, 0.3})"
    "Gamma(2, 3) within [1, 9] + 10"    "-2 * Expon(1)"
    "Normal(0, 1) within percentiles [0.01, 0.99]"
    "Mixture(0.3: Normal(0, 1), 0.7: Expon(2))"
"inf" and "-inf" are numbers. In JSON, infinite and undefined numbers are the
strings "inf", "-inf" and "nan".)help";

constexpr const char* kProbabilityFooter = R"help(Examples:
  pral prob Normal 0 1 1.96 2.58 --survival
  pral prob Normal 0 1 -x 1.96 --cumulative --log
  pral prob "Gamma(2, 3) within [1, 9] + 10" 12 15
  pral prob Poisson 3 --csv claims.csv --column count --log --joint
  seq 0 5 | pral prob Poisson 3
)help";

constexpr const char* kQuantileFooter = R"help(Examples:
  pral quantile Normal 0 1 0.05 0.95
  pral quantile Normal 0 1 -u 1e-20 --upper
  pral quantile Normal 0 1 -1000 --log
  pral quantile "Gamma(2, 3) + 10" --csv levels.csv --column p
)help";

constexpr const char* kSampleFooter = R"help(Examples:
  pral sample Normal 0 1 -n 5 --seed 7
  pral sample "Poisson(3) within [1, inf]" -n 1000 --stream 42/7
  pral sample Lognormal 1000 2500 -n 100 --latin-hypercube --stream 42/claims

Streams
  --stream 42/7 is child 7 of the stream with seed 42, 42/7/claims the child
  "claims" of that, to any depth. Different names give independent numbers, the
  same on every machine, whatever else is drawn: give each worker a child.
  They are those of NumPy's Philox(SeedSequence(42, spawn_key=(7,))).
  --seed starts the stream of the spreadsheet's functions, and draws as they do.
  Without either, every run draws new numbers.
)help";

constexpr const char* kDescribeFooter = R"help(Examples:
  pral describe Gamma
  pral describe Gamma 2 3
  pral describe "Gamma(2, 3) within [1, 9]" --limit 5 --limit 8

A name alone shows the family: its parameters and their ranges, and how C and
Visual Basic call it. With parameters, or as a text, it is a distribution:
moments, support, mode, median, and risk. The value at risk of the upper tail
at 95 % is the percentile 0.95, its expected shortfall the mean of the values
above; those of the lower tail are percentile 0.05 and the mean below.
A moment that does not exist is "undefined", one that diverges "infinite".
)help";

constexpr const char* kFitFooter =
    R"(Examples:
  pral fit losses.csv --top 5
  pral fit losses.csv --column loss --min 1 --dist GEV --plot
  pral fit hours.csv --dist Weibull --hold alpha=2 --errors --interval 0.9
  pral fit claims.csv --test ad --top 3 --json
  pral fit tests.csv --column at_least --right at_most --weights number

Reading
  Fields are separated by commas, semicolons or tabs, as in the first row, and
  stand in double quotes where they hold one. Where semicolons or tabs
  separate, decimal commas are understood as well; thousands separators are
  refused. A column without a name beside others that have one, as R writes it
  before the names of rows, is not the first with numbers. An empty cell, NA,
  N/A, #N/A, NaN or NULL is missing, and takes its row out of all columns that
  are used. What cannot be read with certainty is refused. The first line tells
  what was read; with csv and json it is on the standard error.

Censored data
  With --right each row is an interval that holds a value: --column has its left
  end, --right its right one. Equal ends are an exact value; an end that is
  empty, NA, inf or -inf is open: 5 and an empty cell say "5 or more".

The table
  "regular" is a maximum of the likelihood inside the parameters' ranges. At an
  "edge" the likelihood levels off: the family has become another, which is
  named if the library has it. By "cells" count the fits whose likelihood grows
  without bound, by the probability of x +- h/2 for each value, h being the unit
  in which they were recorded (--cell). Regular maxima come first, then edges,
  then cells; within them the criterion decides. dAICc is the difference from
  the least, the weight Akaike's: the share of the evidence. Families whose fits
  are the same distribution share a row: "also".
  Whole numbers are fitted by discrete families, by continuous ones as well if
  they spread widely; --kind and --dist choose otherwise. Families that cannot
  have the data are left out; --verbose tells why. All parameters count that
  are not held, the shift as one more.

Tests and intervals
  A p-value is right although parameters were estimated from the same data:
  each replicate is drawn from the fit and fitted again; p_error is the error of
  this simulation. Both --test and --interval look at the five best fits unless
  --top or --dist choose. Bootstrap intervals draw from the fit; from the data
  where these are censored. The same seed gives the same numbers, whatever the
  number of threads. What the data do not tell, such as the error of a whole
  number or of an end of the support at a datum, is nan.
  json has what plots need: quantiles, a histogram, fitted densities.)";

/// Descriptions in lines that fit the page.
class PageFormatter : public CLI::Formatter {
  public:
    static constexpr std::size_t kColumn = 28;

    PageFormatter() {
        column_width(kColumn);
        label("SUBCOMMAND", "COMMAND");
        label("REQUIRED", "(required)");
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        return wrapped(option->get_description(), kPageWidth - kColumn);
    }
};

/// An option whose value is one of a few words, in any case.
template <class Value>
void add_choice(CLI::App* command, const std::string& name, Value& target,
                const std::map<std::string, Value>& choices, const std::string& wanted,
                const std::string& text, const std::string& type) {
    const auto store = [=, &target](const std::string& given) {
        const auto found = choices.find(lower_case(given));
        if (found == choices.end())
            throw UsageError(fmt::format("{}: {} is wanted, not {}", name, wanted, shown(given)));
        target = found->second;
    };
    command->add_option_function<std::string>(name, store, text)->type_name(type);
}

void add_format(CLI::App* command, Format& format) {
    add_choice<Format>(
        command, "--format", format, {{"table", Format::table}, {"csv", Format::csv}, {"json", Format::json}},
        "table, csv or json", "How to write: table (aligned, the default), csv or json", "FORMAT");
}

CLI::Option* add_number(CLI::App* command, const std::string& name, std::optional<double>& target,
                        const std::string& text) {
    const auto store = [name, &target](const std::string& given) { target = parse_real(given, name); };
    return command->add_option_function<std::string>(name, store, text)->type_name("NUMBER");
}

/// An option that is given once or more, each time with one text.
CLI::Option* add_repeated(CLI::App* command, const std::string& name, std::vector<std::string>& target,
                          const std::string& text) {
    return command->add_option(name, target, text)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void add_csv(CLI::App* command, CsvRequest& csv, const std::string& column_text) {
    command->add_option("--column", csv.column, column_text)->type_name("COLUMN");
    add_choice<std::optional<bool>>(
        command, "--header", csv.names, {{"yes", true}, {"no", false}}, "yes or no",
        "Whether the first row holds names (default: if no cell is a number)", "YES|NO");
    add_choice<std::optional<DecimalMark>>(
        command, "--decimal", csv.decimal, {{"comma", DecimalMark::comma}, {"point", DecimalMark::point}},
        "comma or point", "The decimal mark, where the cells leave it in doubt", "MARK");
    command->add_flag("--skip-missing", csv.skip_missing,
                      "Leave missing cells out; they are refused otherwise");
}

void add_distribution(CLI::App* command, DistributionOptions& options, const std::string& numbers,
                      const std::string& text) {
    command
        ->add_option("DISTRIBUTION", options.distribution,
                     "A family's name, as in \"pral list\", or a distribution as one text in quotes")
        ->required()
        ->type_name("");
    command->add_option(numbers, options.numbers, text)->type_name("");
    add_number(command, "--min", options.min, "Truncate: no values below this one");
    add_number(command, "--max", options.max, "Truncate: no values above this one");
    add_number(command, "--min-percentile", options.min_percentile,
               "The same, given as a percentile in [0,1]")
        ->type_name("P");
    add_number(command, "--max-percentile", options.max_percentile,
               "The same, given as a percentile in [0,1]")
        ->type_name("P");
    add_number(command, "--shift", options.shift, "Move the (truncated) distribution by this much");
}

/// The option that gives values, and the column that may give them.
void add_values(CLI::App* command, const std::string& name, ValueOptions& values, const std::string& text) {
    add_repeated(command, name, values.given, text)->type_name("NUMBERS");
    command->add_option("--csv", values.file, "A CSV file with them")->type_name("FILE");
    add_csv(command, values.csv, "Its column, or that of the standard input, by name or number");
}

std::string version_text() { return std::string("pral_core ") + PralVersion(); }

/// All that can be asked for; the options live as long as the parser.
struct CommandLine {
    CLI::App app{"pral: samples, quantiles and probabilities of the distributions in pral_core"};
    ListOptions list_options;
    DescribeOptions describe_options;
    SampleOptions sample_options;
    QuantileOptions quantile_options;
    ProbabilityOptions probability_options;
    FitOptions fit_options;

    CommandLine() {
        app.name("pral");
        app.allow_windows_style_options(false);  // the same command line on both platforms
        app.require_subcommand(1);
        app.set_version_flag("--version", version_text(), "The version of the library");
        app.formatter(std::make_shared<PageFormatter>());
        app.failure_message([](const CLI::App*, const CLI::Error& error) {
            return fmt::format("pral: {}\n\"pral --help\" and \"pral COMMAND --help\" tell more.\n",
                               error.what());
        });
        add_list();
        add_describe();
        add_sample();
        add_quantile();
        add_probability();
        add_fit();
        app.add_subcommand("version", "The same")->callback([] { write(version_text() + '\n'); });
        for (auto* command : commands()) command->group("Commands");
        app.footer(kFooter);  // last: commands would inherit it
    }

    std::vector<CLI::App*> commands() {
        return app.get_subcommands([](const CLI::App*) { return true; });
    }

    /// The parser itself would only say that a subcommand is missing.
    void require_command(const std::string& first) {
        const auto name = [](const CLI::App* command) { return command->get_name(); };
        const auto all = commands();
        if (first.starts_with('-') || std::ranges::find(all, first, name) != all.end()) return;
        throw UsageError(fmt::format("{}; the commands are {} (pral --help tells more)",
                                     first.empty() ? "a command is wanted" : "there is no command " + first,
                                     joined(all, ", ", name)));
    }

    void add_list() {
        auto* command = app.add_subcommand("list", "The families, with their parameters");
        command->add_option("--kind", list_options.kind, "Only this kind: continuous, discrete or data")
            ->type_name("KIND");
        command
            ->add_option("--search", list_options.search,
                         "Only families whose line or other names hold this word")
            ->type_name("WORD");
        add_format(command, list_options.format);
        command->callback([this] { list(list_options); });
    }

    void add_describe() {
        DescribeOptions& options = describe_options;
        auto* command = app.add_subcommand("describe", "A family, or a distribution: moments and risk");
        command->footer(std::string(kDescribeFooter) + kDistributionFooter);
        add_distribution(command, options, "PARAMETERS", "The family's parameters");
        add_repeated(command, "--limit", options.limits,
                     "The mean of the values limited to this one; may be given more than once")
            ->type_name("NUMBERS");
        add_format(command, options.format);
        command->callback([this] { describe(describe_options); });
    }

    void add_sample() {
        SampleOptions& options = sample_options;
        auto* command = app.add_subcommand("sample", "Random values of a distribution");
        command->footer(std::string(kSampleFooter) + kDistributionFooter);
        add_distribution(command, options, "PARAMETERS", "The family's parameters");
        const auto store_count = [&options](const std::string& given) {
            options.count = parse_number(given, "-n");
        };
        command->add_option_function<std::string>("-n,--count", store_count, "How many (default 1)")
            ->type_name("COUNT");
        command
            ->add_option("--stream", options.stream,
                         "Stream of random numbers: a seed and its children, 42/7")
            ->type_name("NAME");
        add_number(command, "--seed", options.seed,
                   "Seed of the classic stream, that of the spreadsheet's functions")
            ->type_name("SEED");
        command->add_flag("--latin-hypercube", options.latin_hypercube,
                          "One value from each of COUNT equal slices of the distribution");
        add_format(command, options.format);
        command->callback([this] { sample(sample_options); });
    }

    void add_quantile() {
        QuantileOptions& options = quantile_options;
        auto* command = app.add_subcommand("quantile", "The values of a distribution at given percentiles");
        command->footer(std::string(kQuantileFooter) + kDistributionFooter);
        add_distribution(command, options, "NUMBERS",
                         "The family's parameters, then percentiles; a - stands for the standard input");
        add_values(command, "-u,--percentile", options.percentiles,
                   "Percentiles in [0,1]; may be given more than once");
        command->add_flag("--upper", options.upper,
                          "They are those of the upper tail: the probability above");
        command->add_flag("--log", options.log, "They are given by their natural logarithms");
        add_format(command, options.format);
        command->callback([this] { quantile(quantile_options); });
    }

    void add_probability() {
        ProbabilityOptions& options = probability_options;
        auto* command = app.add_subcommand("prob", "Density (or mass) and probabilities at given values");
        command->footer(std::string(kProbabilityFooter) + kDistributionFooter);
        add_distribution(command, options, "NUMBERS",
                         "The family's parameters, then values; a - stands for the standard input");
        add_values(command, "-x,--value", options.values,
                   "Where to evaluate; may be given more than once, one line each");
        command->add_flag("--cumulative", options.cumulative,
                          "The probability up to each value, not the density");
        command->add_flag("--survival", options.survival, "The probability above each value");
        command->add_flag("--log", options.log, "Its natural logarithm; -inf for probability 0");
        command->add_flag("--log10", options.log10, "Its base-10 logarithm");
        command->add_flag("--joint", options.joint, "One line: the joint value of all");
        add_format(command, options.format);
        command->callback([this] { probability(probability_options); });
    }

    void add_fit() {
        FitOptions& options = fit_options;
        auto* command = app.add_subcommand("fit", "Families fitted to a column of numbers, best first");
        command->footer(kFitFooter);
        command->add_option("FILE", options.file, "CSV file with the data; - is the standard input")
            ->required()
            ->type_name("");
        add_csv(command, options.csv, "Its column, by name or number (default: the first with numbers)");
        command
            ->add_option("--right,--censored", options.right,
                         "The right ends of intervals, whose left ends are in --column (see below)")
            ->type_name("COLUMN");
        command->add_option("--weights", options.weights, "How often each row counts")->type_name("COLUMN");
        add_number(command, "--min", options.min,
                   "The data are a truncated sample: none was kept below this");
        add_number(command, "--max", options.max, "Likewise: none was kept above this");
        add_number(command, "--cell", options.cell,
                   "The unit in which the values were recorded (default: as they show it)");
        add_families(command);
        add_results(command);
        add_number(command, "--timeout", options.timeout,
                   "Give a family up after so much processor time (default 60)")
            ->type_name("SECONDS");
        add_number(command, "--threads", options.threads, "How many threads (default: one a processor)")
            ->type_name("COUNT");
        command->add_flag("--verbose", options.verbose, "Tell which families were left out, and why");
        add_format(command, options.format);
        command->add_flag_callback(
            "--json", [&options] { options.format = Format::json; }, "The same as --format json");
        command->callback([this] { fit(fit_options); });
    }

    /// Which families are fitted, and how.
    void add_families(CLI::App* command) {
        FitOptions& options = fit_options;
        add_repeated(command, "--dist", options.families, "Only this family; may be given more than once")
            ->type_name("FAMILY");
        command->add_option("--kind", options.kind, "All families of this kind: continuous or discrete")
            ->type_name("KIND");
        add_repeated(command, "--hold", options.held,
                     "Hold a parameter of the one --dist; may be given more than once")
            ->type_name("NAME=NUMBER");
        command->add_flag("--shift", options.shift, "Fit a shift as well");
        add_choice<int>(command, "--method", options.method,
                        {{"likelihood", PRAL_MAXIMUM_LIKELIHOOD}, {"spacings", PRAL_MAXIMUM_SPACINGS}},
                        "likelihood or spacings",
                        "By the maximum likelihood (default), or the maximum product of spacings", "METHOD");
    }

    /// What is shown of the fits.
    void add_results(CLI::App* command) {
        FitOptions& options = fit_options;
        add_choice<Criterion>(command, "--rank", options.rank,
                              {{"aic", Criterion::aic}, {"aicc", Criterion::aicc}, {"bic", Criterion::bic}},
                              "AIC, AICc or BIC", "Rank by AIC, AICc (the default) or BIC", "CRITERION");
        add_number(command, "--top", options.top, "Only so many, the best")->type_name("COUNT");
        command->add_flag("--errors", options.errors, "Standard errors of the parameters");
        add_number(command, "--interval", options.interval,
                   "Intervals that hold the parameters with this probability")
            ->type_name("LEVEL");
        add_choice<int>(command, "--interval-method", options.interval_method,
                        {{"wald", PRAL_WALD}, {"profile", PRAL_PROFILE}, {"bootstrap", PRAL_BOOTSTRAP}},
                        "wald, profile or bootstrap",
                        "From standard errors (wald), the likelihood (profile, the default) or bootstrap",
                        "METHOD");
        add_choice<std::optional<int>>(command, "--test", options.test,
                                       {{"ks", PRAL_KOLMOGOROV_SMIRNOV},
                                        {"cvm", PRAL_CRAMER_VON_MISES},
                                        {"ad", PRAL_ANDERSON_DARLING},
                                        {"chisq", PRAL_CHI_SQUARE}},
                                       "ks, cvm, ad or chisq",
                                       "p-values: Kolmogorov-Smirnov (ks), Cramer-von Mises (cvm), "
                                       "Anderson-Darling (ad) or chi-square (chisq)",
                                       "TEST");
        add_number(command, "--replicates", options.replicates, "Of tests and bootstrap (default 999)")
            ->type_name("COUNT");
        add_number(command, "--seed", options.seed, "Of the replicates (default 1)")->type_name("SEED");
        command->add_flag("--plot", options.plot, "Draw the data beside the best fit");
    }
};

/// What stands on the command line, last first, as the parser takes it.
std::vector<std::string> reversed_arguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(unmistakable(argv[i]));
    return arguments;
}

}  // namespace

int run(int argc, char** argv) {
    CommandLine line;
    line.require_command(argc > 1 ? argv[1] : "");
    try {
        line.app.parse(reversed_arguments(argc, argv));
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error) == 0 ? kSuccess : kUsage;
    }
    return kSuccess;
}

}  // namespace cli
