// Numbers inside messages.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string>

#include "classic/error_text.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

struct Row {
    double value;
    const char* text;
};

constexpr Row kRows[] = {
    {0.0, "0"},
    {0.5, "0.5"},
    {3.0, "3"},
    {-2.25, "-2.25"},
    {100.0, "100"},
    {-1e15, "-1000000000000000"},
    {0.1, "0.1"},
    {1.0 / 3, "0.3333333333333333"},
    {1e-16, "0.0000000000000001"},
    {12.125, "12.125"},
    // Below 16 decimals the number prints with an exponent, and the zeros of the exponent go with the others.
    {1e-30, "1e-3"},
    {1e-20, "9.999999999999999e-21"},
    {3e-17, "3e-17"},
};

TEST(NumberText, PrintsAsMessagesDo) {
    for (const Row& row : kRows) EXPECT_EQ(pral::number_text(row.value), row.text);
}

TEST(NumberText, SurvivesNumbersThatCannotBeRounded) {
    EXPECT_EQ(pral::number_text(1e300).substr(0, 17), "10000000000000000");
    EXPECT_EQ(pral::number_text(HUGE_VAL), "inf");
}

/// Sets a locale with a decimal comma; false where the machine has none.
bool set_comma() {
    const auto set = [](const char* name) {
        return std::setlocale(LC_NUMERIC, name) != nullptr && *std::localeconv()->decimal_point == ',';
    };
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "German"}) {
        if (set(name)) return true;
    }
#ifndef _WIN32
    const std::string folder = testing::TempDir() + "pral_locale_" + std::to_string(getpid());
    const std::string make = "mkdir " + folder + " && localedef -c -i - -f UTF-8 " + folder +
                             "/xx_XX.UTF-8 >/dev/null 2>&1 <<'END'\n"
                             "LC_CTYPE\ncopy \"POSIX\"\nEND LC_CTYPE\n"
                             "LC_NUMERIC\ndecimal_point \",\"\nEND LC_NUMERIC\nEND\n";
    (void)!std::system(make.c_str());
    setenv("LOCPATH", folder.c_str(), 1);
    const bool comma = set("xx_XX.UTF-8");
    (void)!std::system(("rm -r " + folder).c_str());
    return comma;
#else
    return false;
#endif
}

/// A host may have set such a locale.
TEST(NumberText, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    const bool comma = set_comma();
    const std::string text = pral::number_text(-2.25), small = pral::number_text(3.5e-17);
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ(text, "-2.25");
    EXPECT_EQ(small, "3.5e-17");
    if (!comma) GTEST_SKIP() << "no locale with a decimal comma on this machine";
}

}  // namespace
