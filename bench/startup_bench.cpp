// initialize() as a program sees it: each run is a fresh process (start-up works once per process).
// The program runs itself in one of three ways; the differences between them are the figures:
//   exit        loads the library and exits: the floor (process, dynamic loading, static set-up);
//   database    reads the shipped lcdata.xml into a private LcData and exits;
//   initialize  calls fl::i18n::initialize() and exits.
// The children run with LANG=de_DE.UTF-8 and a throw-away XDG_CONFIG_HOME.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/startup/initialize.hpp>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <cstring>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

// With QVI18N_BENCH_PRINT set, a child also prints how long its work took inside the process (in
// microseconds, wall clock then processor time), which leaves out the spawning and loading that dominate the outside figure.
int probe(std::string const& mode)
{
    auto const start = std::chrono::steady_clock::now();
    std::clock_t const cpu_start = std::clock();
    int result = 0;
    if (mode == "database") {
        fl::i18n::LcData data;
        fl::i18n::parseLcData(data, fl::filesystem::native_path(QVI18N_BENCH_BUILD_ROOT "/bin/lcdata.xml"));
        result = data.getLcName("de_DE").empty() ? 1 : 0;
    } else if (mode == "initialize") {
        fl::i18n::initialize();
        result = fl::i18n::QvLcUtil::getLcStatus() == 0 ? 0 : 1;
    }
    if (std::getenv("QVI18N_BENCH_PRINT") != nullptr) {
        auto const took = std::chrono::steady_clock::now() - start;
        std::printf("%lld %lld\n", static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(took).count()),
            static_cast<long long>((std::clock() - cpu_start) * 1000000LL / CLOCKS_PER_SEC));
    }
    return result;
}

std::string& config_dir()
{
    static std::string dir = [] {
        char name[] = "/tmp/qvi18n-bench-XXXXXX";
        return std::string(::mkdtemp(name) ? name : "");
    }();
    return dir;
}

void run_child(benchmark::State& state, char const* mode)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    for (char const* name : {"LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LANGUAGE", "QVLOCALE_LCDATA_PATH",
             "QVLOCALE_LCDATA_FILENAME", "QVLOCALE_L10N_CONTROL"})
        ::unsetenv(name);
    if (config_dir().empty()) {
        state.SkipWithError("no temporary folder");
        return;
    }
    ::setenv("XDG_CONFIG_HOME", config_dir().c_str(), 1);
    std::string arg = std::string("--probe=") + mode;
    char* argv[] = {const_cast<char*>("bench_startup"), &arg[0], nullptr};
    for (auto _ : state) {
        pid_t child = 0;
        if (::posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, argv, environ) != 0) {
            state.SkipWithError("posix_spawn failed");
            return;
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("the child failed");
            return;
        }
    }
}

void BM_ProcessFloor(benchmark::State& state)
{
    run_child(state, "exit");
}
BENCHMARK(BM_ProcessFloor)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_DatabaseReadOnly(benchmark::State& state)
{
    run_child(state, "database");
}
BENCHMARK(BM_DatabaseReadOnly)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_Initialize(benchmark::State& state)
{
    run_child(state, "initialize");
}
BENCHMARK(BM_Initialize)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strncmp(argv[1], "--probe=", 8) == 0)
        return probe(argv[1] + 8);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (config_dir().empty())
        return 1;
    std::string cleanup = "rm -rf '" + config_dir() + "'";
    return std::system(cleanup.c_str()) == 0 ? 0 : 1;
}
