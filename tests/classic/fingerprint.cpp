// Calls every declared function of a library with drawn arguments and prints a line of hashes for each; with two
// libraries, the first call of each function in which they differ. fingerprint.py is its driver.
//
//     classic_fingerprint [--times] LIBRARY [OTHER] < declarations
//
// Each function is called in a process of its own, so that a line depends on no other function, nor on a crash of it.
#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <optional>

#include "arguments.h"

namespace pral::fingerprint {

namespace {

constexpr rlim_t kSeconds = 20;  // of the processor for one function: what takes longer hangs

class Hash {
  public:
    void add(std::uint64_t bits) {
        hash_ = (hash_ ^ bits) * 0x9e3779b97f4a7c15u;
        hash_ ^= hash_ >> 29;
    }
    /// All that are not numbers count alike: their bits depend on the processor's operand order.
    void add(double value) { add(std::isnan(value) ? 0x7ff8000000000000u : Word::of(value).bits); }
    void add(const char* text) {
        for (; *text != 0; ++text) add(std::uint64_t{static_cast<unsigned char>(*text)});
        add(std::uint64_t{0x100});
    }
    std::uint64_t value() const { return hash_; }

  private:
    std::uint64_t hash_ = 0x2545f4914f6cdd1du;
};

struct Result {
    std::uint64_t outputs, flags, draws, succeeded;
    bool operator==(const Result&) const = default;
};

class Library {
  public:
    explicit Library(const char* file) : handle_(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) throw std::runtime_error(dlerror());
    }
    void* function(const std::string& name) const { return dlsym(handle_, name.c_str()); }

    void prepare(unsigned seed) const {
        reinterpret_cast<void (*)(unsigned)>(function("PralSetRandomSeed"))(seed);
        reinterpret_cast<void (*)(const char*)>(function("PralSetCoreError"))("no message");
        reinterpret_cast<void (*)(double)>(function("PralSetFitTimeout"))(1e6);
    }
    const char* message() const { return reinterpret_cast<const char* (*)()>(function("PralCoreError"))(); }
    double next_draw() const {
        double u = 0;
        const auto uniform =
            reinterpret_cast<bool (*)(double*, double, double, const double*, const int*, const double*,
                                      const double*, const double*)>(function("PralUniform_Core"));
        uniform(&u, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr);
        return u;
    }

  private:
    void* handle_;
};

void add_outputs(Hash& hash, const Arguments& arguments) {
    for (const Buffer& buffer : arguments.buffers)
        for (const double element : buffer.elements) hash.add(element);
    for (const int integer : arguments.integers) hash.add(static_cast<std::uint64_t>(integer));
    for (const SAFEARRAY* vector : arguments.vectors) {
        if (vector == nullptr) continue;
        hash.add(std::uint64_t{vector->cLocks});
        const std::size_t elements = std::size_t{vector->rgsabound[0].cElements} *
                                     (vector->cDims > 1 ? vector->rgsabound[1].cElements : 1);
        for (std::size_t i = 0; i < elements; ++i) {
            if (vector->cbElements == 8)
                hash.add(static_cast<const double*>(vector->pvData)[i]);
            else
                hash.add(std::uint64_t{static_cast<const std::uint32_t*>(vector->pvData)[i]});
        }
    }
}

/// One call; what it did is described in *text when that is given.
Result call_once(const Library& library, const Declaration& declaration, const Families& families, int index,
                 std::string* text = nullptr) {
    Arguments arguments;
    draw(declaration, families, index, arguments);
    library.prepare(1 + static_cast<unsigned>(index % 7));
    if (text != nullptr)
        *text = "  call " + std::to_string(index) + "\n" + arguments.description(declaration);
    Hash outputs, flags, draws;
    std::uint64_t returned = call(library.function(declaration.name), arguments.words);
    const bool flag = declaration.returned == "bool";
    if (flag) {
        returned &= 0xff;
        flags.add(returned);
    } else if (declaration.returned == "const char*") {
        flags.add(reinterpret_cast<const char*>(returned));
    } else if (declaration.returned == "BSTR") {
        const BSTR string = reinterpret_cast<BSTR>(returned);
        for (unsigned i = 0; i < SysStringLen(string); ++i) flags.add(std::uint64_t{string[i]});
        SysFreeString(string);
    }
    flags.add(library.message());
    add_outputs(outputs, arguments);
    const double next = library.next_draw();
    draws.add(next);
    if (text != nullptr) {
        char last[64];
        std::snprintf(last, sizeof last, "    next draw %.17g\n", next);
        *text += std::string("   gives ") +
                 (!flag           ? ""
                  : returned != 0 ? "true"
                                  : "false") +
                 ", \"" + library.message() + "\"\n" + arguments.description(declaration) + last;
    }
    return {outputs.value(), flags.value(), draws.value(), !flag || returned != 0};
}

/// The results of all calls of a function, from a process of its own; fewer than there are sets when it ended early.
struct Run {
    std::vector<Result> results;
    int status = 0;
};

/// What the process of a function leaves to its parent.
struct Shared {
    std::size_t count;
    Result results[kMostSets];
};

/// Runs `body` in a child; its status.
template <class Body>
int in_a_process(Body body) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit = {kSeconds, kSeconds}, none = {0, 0};
        setrlimit(RLIMIT_CPU, &limit);
        setrlimit(RLIMIT_CORE, &none);
        body();
        std::fflush(stdout);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

Run run(const Library& library, const Declaration& declaration, const Families& families, bool times) {
    static Shared* const shared = static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    if (shared == MAP_FAILED) throw std::runtime_error("no shared memory");
    shared->count = 0;
    Run made;
    made.status = in_a_process([&] {
        for (int index = 0; index < sets_of(declaration); ++index) {
            const std::clock_t start = times ? std::clock() : 0;
            shared->results[index] = call_once(library, declaration, families, index);
            shared->count = static_cast<std::size_t>(index) + 1;
            if (!times) continue;
            const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            if (taken > 0.03)
                std::fprintf(stderr, "%s, call %d: %.0f ms\n", declaration.name.c_str(), index, 1000 * taken);
        }
    });
    made.results.assign(shared->results, shared->results + shared->count);
    return made;
}

void print_line(const Declaration& declaration, const Run& made) {
    if (made.status != 0) {
        std::printf("%s\tended by signal %d in call %zu\n", declaration.name.c_str(), WTERMSIG(made.status),
                    made.results.size());
        return;
    }
    Hash outputs, flags, draws;
    std::uint64_t succeeded = 0;
    for (const Result& result : made.results) {
        outputs.add(result.outputs);
        flags.add(result.flags);
        draws.add(result.draws);
        succeeded += result.succeeded;
    }
    std::printf("%s\t%zu\t%" PRIu64 "\t%016" PRIx64 "\t%016" PRIx64 "\t%016" PRIx64 "\n",
                declaration.name.c_str(), made.results.size(), succeeded, outputs.value(), flags.value(),
                draws.value());
}

/// Prints a call of one library, after those before it: the library remembers fits and tables.
void show(const char* title, const Library& library, const Declaration& declaration, const Families& families,
          int last) {
    const int status = in_a_process([&] {
        for (int index = 0; index < last; ++index) call_once(library, declaration, families, index);
        std::string text;
        call_once(library, declaration, families, last, &text);
        std::printf("  %s:\n%s", title, text.c_str());
    });
    if (status != 0) std::printf("  %s ended by signal %d\n", title, WTERMSIG(status));
}

void print_difference(const Library (&libraries)[2], const char* const* names, const Declaration& declaration,
                      const Families& families) {
    const Run runs[] = {run(libraries[0], declaration, families, false),
                        run(libraries[1], declaration, families, false)};
    const auto &one = runs[0].results, &other = runs[1].results;
    const auto total = static_cast<std::size_t>(sets_of(declaration));
    std::size_t differing = 0, first = total;
    for (std::size_t i = 0; i < total; ++i) {
        if (i < one.size() && i < other.size() && one[i] == other[i]) continue;
        if (i >= one.size() && i >= other.size()) continue;
        first = std::min(first, i);
        ++differing;
    }
    if (differing == 0) return;
    std::printf("%s: %zu of %zu calls differ, the first of them\n", declaration.name.c_str(), differing,
                total);
    for (int i = 0; i < 2; ++i) show(names[i], libraries[i], declaration, families, static_cast<int>(first));
}

int run_all(int count, char** words) {
    const bool times = count > 1 && std::string(words[1]) == "--times";
    const char* const* files = words + (times ? 2 : 1);
    const int libraries = count - (times ? 2 : 1);
    if (libraries < 1 || libraries > 2) return 2;
    const auto declarations = read_declarations(std::cin);
    const Families families(declarations);
    const Library pair[2] = {Library(files[0]), Library(files[libraries - 1])};
    for (const Declaration& declaration : declarations) {
        if (!declaration.selected) continue;
        if (pair[0].function(declaration.name) == nullptr || pair[1].function(declaration.name) == nullptr)
            std::printf("%s\tis not exported\n", declaration.name.c_str());
        else if (libraries == 2)
            print_difference(pair, files, declaration, families);
        else
            print_line(declaration, run(pair[0], declaration, families, times));
    }
    return 0;
}

}  // namespace

}  // namespace pral::fingerprint

int main(int count, char** words) {
    try {
        return pral::fingerprint::run_all(count, words);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
