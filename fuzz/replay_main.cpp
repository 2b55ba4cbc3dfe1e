// Runs a fuzz target over files without libFuzzer: each argument is a file or a directory of
// files (a corpus), every file is one input. A crash or a sanitizer report fails the run.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv)
{
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    namespace fs = std::filesystem;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path given(argv[i]);
        if (fs::is_directory(given)) {
            for (const auto& entry : fs::directory_iterator(given))
                if (entry.is_regular_file())
                    inputs.push_back(entry.path());
        } else if (fs::is_regular_file(given)) {
            inputs.push_back(given);
        } else {
            std::fprintf(stderr, "replay: no such file or directory: %s\n", argv[i]);
            return 2;
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        // A copy of exactly the input's size, so that the sanitizers see a read past its end.
        std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(data.empty() ? nullptr : data.data(), data.size());
    }
    std::printf("replay: %zu inputs\n", inputs.size());
    return inputs.empty() ? 3 : 0;
}
