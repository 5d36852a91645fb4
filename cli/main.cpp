// pral, the command-line companion of pral_core: how commands and options are spelt, and what the exit codes are.
// The only file that includes CLI11, which is slow to compile.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>

#include "arguments.h"
#include "classic/core_api.h"
#include "commands.h"
#include "errors.h"
#include "text.h"

namespace {

using namespace cli;

constexpr const char* kFooter = R"(Examples:
  pral list --search exponential
  pral describe Normal
  pral sample Normal 0 1 -n 5 --seed 7
  pral quantile Normal 0 1 -u 0.05 -u 0.95 --min 0
  pral prob Normal 0 1 -x 1.96 --cumulative --format json
  pral fit losses.csv --top 5

A table of numbers is given as a comma list, 1,2.5,4, or as @FILE.csv:COLUMN, the column by name or number; @- is the
standard input. "inf" and "-inf" are numbers, too.
Exit codes: 0 success; 1 the library refused (its error text is on the standard error); 2 wrong usage.)";

constexpr const char* kFamilyFooter =
    R"(PARAMETERS are those that "pral describe FAMILY" tells, in that order: numbers, which may be negative, and tables as a
comma list (1,2.5,4) or @FILE.csv:COLUMN. JSON has no infinities: there they are the strings "inf" and "-inf".)";

constexpr const char* kFitFooter =
    R"(Fields are separated by commas, semicolons or tabs, as in the first row, and stand in double quotes where they hold one.
Where semicolons or tabs separate, decimal commas are understood as well; thousands separators are refused. A column
without a name beside others that have one, as R writes it before the names of rows, is not the first with numbers. An
empty cell, NA, N/A, #N/A, NaN or NULL is missing. What cannot be read with certainty is refused. The first line tells what
was read; with csv and json it is on the standard error.

Whole numbers are fitted by discrete families, others by continuous ones; --kind and --dist choose otherwise. Families
that cannot have the data are left out; --verbose tells why. A table shows rounded numbers; csv and json have all digits.
AIC, AICc and BIC count the free parameters: all of them, the shift as one more, the base of LognormalB (LognormalE in
other words, fitted only by name) as none. A shift adds nothing to a family that has a location of its own, and counts all
the same. Where the range of a family may begin at the smallest value, its likelihood may have no bound there: a shape
below 1 and a range from the smallest value on tell of a first rank that means nothing. The zero-inflated and zero-truncated
Binomial and NegBin keep a real n or s, which only fits know: round it for the other commands.
Bounds hold before the shift, as in the other commands.)";

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

/// An option that is given once or more, each time with a number, a comma list or a column of a file.
void add_numbers(CLI::App* command, const std::string& name, std::vector<std::string>& target,
                 const std::string& text) {
    command->add_option(name, target, text)
        ->required()
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name("NUMBERS");
}

void add_family(CLI::App* command, FamilyOptions& options) {
    command->footer(kFamilyFooter);
    command->add_option("FAMILY", options.family, "Name of the family, as in \"pral list\"")
        ->required()
        ->type_name("");
    command->add_option("PARAMETERS", options.parameters, "Its parameters")->type_name("");
    add_number(command, "--min", options.min, "Truncate: no values below this one");
    add_number(command, "--max", options.max, "Truncate: no values above this one");
    add_number(command, "--min-percentile", options.min_percentile,
               "The same, given as a percentile in [0,1]");
    add_number(command, "--max-percentile", options.max_percentile,
               "The same, given as a percentile in [0,1]");
    add_number(command, "--shift", options.shift, "Move the (truncated) distribution by this much");
    add_format(command, options.format);
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
        app.get_formatter()->column_width(32);
        app.get_formatter()->label("SUBCOMMAND", "COMMAND");
        app.get_formatter()->label("REQUIRED", "(required)");
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
        auto* command =
            app.add_subcommand("describe", "One family: parameters, support, definition, C functions");
        command->add_option("FAMILY", describe_options.family, "Name of the family")
            ->required()
            ->type_name("");
        add_format(command, describe_options.format);
        command->callback([this] { describe(describe_options); });
    }

    void add_sample() {
        auto* command = app.add_subcommand("sample", "Random values of a family");
        add_family(command, sample_options);
        const auto store_count = [this](const std::string& given) {
            sample_options.count = parse_number(given, "-n");
        };
        command->add_option_function<std::string>("-n,--count", store_count, "How many (default 1)")
            ->type_name("COUNT");
        add_number(command, "--seed", sample_options.seed,
                   "Seed of the random stream: the same seed gives the same values.\n"
                   "Without it the system's random device chooses one, new at each run")
            ->type_name("SEED");
        command->callback([this] { sample(sample_options); });
    }

    void add_quantile() {
        auto* command = app.add_subcommand("quantile", "The values of a family at given percentiles");
        add_family(command, quantile_options);
        add_numbers(command, "-u,--percentile", quantile_options.percentiles,
                    "Percentiles in [0,1]; may be given more than once");
        command->callback([this] { quantile(quantile_options); });
    }

    void add_probability() {
        auto* command =
            app.add_subcommand("prob", "Density (or mass) and cumulative probability at given values");
        add_family(command, probability_options);
        add_numbers(command, "-x,--value", probability_options.values,
                    "Where to evaluate; may be given more than once, one line each");
        command->add_flag("--cumulative", probability_options.cumulative,
                          "The cumulative probability, not the density");
        command->add_flag("--log10", probability_options.log10,
                          "Its base-10 logarithm; -inf for probability 0");
        command->add_flag("--joint", probability_options.joint, "One line: the joint value of all");
        command->callback([this] { probability(probability_options); });
    }

    void add_fit() {
        FitOptions& options = fit_options;
        auto* command = app.add_subcommand("fit", "Families fitted to a column of numbers, the best first");
        command->footer(kFitFooter);
        command->add_option("FILE", options.file, "CSV file with the data; - is the standard input")
            ->required()
            ->type_name("");
        command
            ->add_option("--column", options.csv.column,
                         "Its column, by name or number (default: the first with numbers)")
            ->type_name("COLUMN");
        add_choice<std::optional<bool>>(
            command, "--header", options.csv.names, {{"yes", true}, {"no", false}}, "yes or no",
            "Whether the first row holds names (default: if no cell is a number)", "YES|NO");
        add_choice<std::optional<DecimalMark>>(command, "--decimal", options.csv.decimal,
                                               {{"comma", DecimalMark::comma}, {"point", DecimalMark::point}},
                                               "comma or point",
                                               "The decimal mark, where the cells leave it in doubt", "MARK");
        command->add_flag("--skip-missing", options.csv.skip_missing,
                          "Leave missing cells out; they are refused otherwise");
        command->add_option("--dist", options.families, "Only this family; may be given more than once")
            ->expected(1)
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->type_name("FAMILY");
        command->add_option("--kind", options.kind, "All families of this kind: continuous or discrete")
            ->type_name("KIND");
        add_choice<Criterion>(command, "--rank", options.rank,
                              {{"aic", Criterion::aic}, {"aicc", Criterion::aicc}, {"bic", Criterion::bic}},
                              "AIC, AICc or BIC", "Rank by AIC, AICc (the default) or BIC", "CRITERION");
        add_number(command, "--top", options.top, "Only so many, the best")->type_name("COUNT");
        add_number(command, "--min", options.min,
                   "The data are a truncated sample: none was kept below this");
        add_number(command, "--max", options.max, "Likewise: none was kept above this");
        command->add_flag("--shift", options.shift, "Fit a shift as well");
        add_number(command, "--timeout", options.timeout, "Give a family up after this long (default 60)")
            ->type_name("SECONDS");
        command->add_flag("--verbose", options.verbose, "Tell which families were left out, and why");
        add_format(command, options.format);
        command->callback([this] { fit(fit_options); });
    }
};

/// What stands on the command line, last first, as the parser takes it.
std::vector<std::string> reversed_arguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(unmistakable(argv[i]));
    return arguments;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CommandLine line;
        line.require_command(argc > 1 ? argv[1] : "");
        try {
            line.app.parse(reversed_arguments(argc, argv));
        } catch (const CLI::ParseError& error) {
            return line.app.exit(error) == 0 ? kSuccess : kUsage;
        }
        return kSuccess;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "pral: %s\n", error.what());
        return kUsage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return kFailure;
    }
}
