#ifndef QVI18N_FUZZ_FUZZ_SUPPORT_HPP
#define QVI18N_FUZZ_FUZZ_SUPPORT_HPP

// Shared by the fuzz targets: an invariant check that crashes (what the fuzzer reports), input
// bytes read as UTF-16, and a file holding the input for the readers that take only a path.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

namespace qvfuzz {

inline void check(bool condition)
{
    if (!condition)
        std::abort();
}

// UTF-16 from input bytes: two a unit, low byte first (an odd last byte is dropped), or with
// `unit_per_byte` one unit a byte, where ASCII and Latin-1 dominate.
inline std::u16string utf16_units(const std::uint8_t* data, std::size_t size, bool unit_per_byte = false)
{
    std::u16string text;
    if (unit_per_byte) {
        for (std::size_t i = 0; i < size; ++i)
            text += static_cast<char16_t>(data[i]);
    } else {
        for (std::size_t i = 0; i + 1 < size; i += 2)
            text += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    }
    return text;
}

// One file per process, rewritten for every input; in memory where /dev/shm exists.
inline const std::string& write_input(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = [] {
        const char* dir = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        return std::string(dir) + "/qvi18n-fuzz-" + std::to_string(getpid()) + ".xml";
    }();
    std::FILE* file = std::fopen(path.c_str(), "wb");
    check(file != nullptr);
    check(size == 0 || std::fwrite(data, 1, size, file) == size);
    check(std::fclose(file) == 0);
    return path;
}

} // namespace qvfuzz

#endif
