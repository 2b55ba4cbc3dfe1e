// `qvi18n convert` on 100 MiB of UTF-8 to UTF-16LE, against the iconv command and a plain ICU
// streaming loop (ucnv_convertEx through a UTF-16 pivot) over the same file in the same run.
// The commands are timed by the CPU time their processes use (user + system), the loop by this
// process's CPU time: the machine is shared, so wall time says more about the neighbours.

#include <qvi18n/qvi18n.hpp>

#include <benchmark/benchmark.h>
#include <unicode/ucnv.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

const std::size_t input_size = 100u << 20;

// The input's path; the file is removed when the program ends.
char input_name[] = "/tmp/qvi18n-convert-bench-XXXXXX";
// What was written: whole lines, a little under input_size.
std::size_t input_bytes = 0;

void remove_input()
{
    ::unlink(input_name);
}

// Mostly Latin text with accents, some Cyrillic and Japanese, as a translated catalog has it.
const char* input_file()
{
    static const bool written = [] {
        const int fd = ::mkstemp(input_name);
        std::atexit(remove_input);
        const std::string line = "Die Datei \xe2\x80\x9e" "r\xc3\xa9sum\xc3\xa9.txt\xe2\x80\x9c wurde nicht gefunden; "
                                 "\xd0\xa4\xd0\xb0\xd0\xb9\xd0\xbb \xe3\x83\x95\xe3\x82\xa1\xe3\x82\xa4\xe3\x83\xab "
                                 "could not be opened (error 2).\n";
        std::string block;
        while (block.size() < (1u << 20)) {
            block += line;
        }
        block.resize(1u << 20);
        // Cut back to a whole line so that no character is split at a block boundary.
        block.resize(block.rfind('\n') + 1);
        std::size_t written_bytes = 0;
        while (written_bytes + block.size() <= input_size) {
            written_bytes += static_cast<std::size_t>(::write(fd, block.data(), block.size()));
        }
        ::close(fd);
        input_bytes = written_bytes;
        return true;
    }();
    (void)written;
    return input_name;
}

double children_cpu()
{
    rusage usage;
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + 1e-6 * (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

double process_cpu()
{
    timespec now;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec + 1e-9 * now.tv_nsec;
}

// Runs `argv` with the input file on stdin and stdout to /dev/null; the CPU seconds it used.
double run_command(benchmark::State& state, std::vector<std::string> args)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input_file(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(&arg[0]);
    }
    argv.push_back(nullptr);
    const double before = children_cpu();
    pid_t pid;
    int status = -1;
    if (::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0) {
        ::waitpid(pid, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        state.SkipWithError(("command failed: " + args[0]).c_str());
    }
    return children_cpu() - before;
}

void BM_QvI18nConvert(benchmark::State& state)
{
    const std::string tool = std::string(QVI18N_BENCH_BUILD_ROOT) + "/bin/" + fl::i18n::platform_tag() + "/qvi18n";
    for (auto _ : state) {
        state.SetIterationTime(run_command(state, {tool, "convert", "--from", "UTF-8", "--to", "UTF-16LE"}));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * input_bytes));
}

void BM_Iconv(benchmark::State& state)
{
    for (auto _ : state) {
        state.SetIterationTime(run_command(state, {"iconv", "-f", "UTF-8", "-t", "UTF-16LE"}));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * input_bytes));
}

// What a converter program on ICU alone does: read a buffer, convert through the pivot, write.
void BM_IcuStreamingLoop(benchmark::State& state)
{
    std::vector<char> in(1 << 16), out(1 << 18);
    std::vector<UChar> pivot(1 << 16);
    for (auto _ : state) {
        const double before = process_cpu();
        UErrorCode error = U_ZERO_ERROR;
        UConverter* from = ucnv_open("UTF-8", &error);
        UConverter* to = ucnv_open("UTF-16LE", &error);
        const int fd = ::open(input_file(), O_RDONLY);
        const int sink = ::open("/dev/null", O_WRONLY);
        UChar* pivot_source = pivot.data();
        UChar* pivot_target = pivot.data();
        for (bool end = false; !end && U_SUCCESS(error);) {
            const ssize_t n = ::read(fd, in.data(), in.size());
            end = n <= 0;
            const char* source = in.data();
            const char* source_limit = source + (n > 0 ? n : 0);
            do {
                error = U_ZERO_ERROR;
                char* target = out.data();
                ucnv_convertEx(to, from, &target, out.data() + out.size(), &source, source_limit, pivot.data(),
                    &pivot_source, &pivot_target, pivot.data() + pivot.size(), false, end, &error);
                benchmark::DoNotOptimize(::write(sink, out.data(), static_cast<std::size_t>(target - out.data())));
            } while (error == U_BUFFER_OVERFLOW_ERROR);
        }
        ::close(fd);
        ::close(sink);
        ucnv_close(from);
        ucnv_close(to);
        if (U_FAILURE(error)) {
            state.SkipWithError(u_errorName(error));
        }
        state.SetIterationTime(process_cpu() - before);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * input_bytes));
}

BENCHMARK(BM_QvI18nConvert)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Iconv)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IcuStreamingLoop)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
