// The main function of every test program. It differs from GoogleTest's own in two ways: a filter that
// selects no test is a failure, and --suite-prefixes=A,B,... checks that each suite's name begins with one of
// the given prefixes (those of the program's files) instead of running tests, so that no suite can be left
// out of every CTest entry.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const auto comma = list.find(',');
        parts.emplace_back(list.substr(0, comma));
        list = comma == std::string_view::npos ? std::string_view{} : list.substr(comma + 1);
    }
    return parts;
}

bool suites_have_their_file(const std::vector<std::string>& prefixes) {
    const auto& unit = *testing::UnitTest::GetInstance();
    bool all = true;
    for (int i = 0; i < unit.total_test_suite_count(); ++i) {
        std::string_view name = unit.GetTestSuite(i)->name();
        // A parameterised suite is called Instance/Suite, a typed one Suite/0: a part may carry the prefix.
        bool found = false;
        for (const auto& prefix : prefixes) {
            found = found || name.starts_with(prefix) || name.find("/" + prefix) != std::string_view::npos;
        }
        if (!found) {
            std::fprintf(stderr, "suite %s is named after no test file: it would never run\n",
                         unit.GetTestSuite(i)->name());
            all = false;
        }
    }
    return all && unit.total_test_suite_count() > 0;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    constexpr std::string_view option = "--suite-prefixes=";
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with(option)) {
            return suites_have_their_file(split(argument.substr(option.size()))) ? 0 : 1;
        }
    }
    const int result = RUN_ALL_TESTS();
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::fprintf(stderr, "the filter %s selects no test\n", testing::GTEST_FLAG(filter).c_str());
        return 1;
    }
    return result;
}
