// Many threads converting at once: the default functions (a clone of the master per call), each
// thread's cached converter, and converter objects of their own.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace fl::i18n;

TEST(ConcurrentConversion, DefaultCachedAndOwnConvertersSideBySide)
{
    const int thread_count = 8;
    const int rounds = 150;
    std::atomic<int> ready {0};
    std::atomic<int> failures {0};
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_count; ++t) {
        threads.emplace_back([&, t] {
            // Start together, so that the first use of the master is contended.
            ++ready;
            while (ready.load() < thread_count)
                std::this_thread::yield();
            codecvt_ustring_to_string to_utf8("UTF-8", false);
            codecvt_string_to_ustring from_sjis("Shift_JIS", true);
            UConverter* cached = lcctype::get_cached_codecvt();
            for (int i = 0; i < rounds; ++i) {
                const std::size_t length = 1 + static_cast<std::size_t>((t * 977 + i * 131) % 3000);
                const std::string ascii(length, static_cast<char>('a' + (t + i) % 26));
                const ustring expected(ascii.begin(), ascii.end());
                if (to_ustring(ascii) != expected || to_string(expected) != ascii)
                    ++failures;
                if (to_ustring(ascii + "\xFF") != expected + u'\uFFFD')
                    ++failures;
                if (lcctype::get_cached_codecvt() != cached)
                    ++failures;
                const ustring via_cache = lcctype::convert_to_string_large_buffer<char16_t, char>(
                    cached, ascii.data(), ascii.size(), &lcctype::stream_conversion_to_utf16);
                if (via_cache != expected)
                    ++failures;
                const ustring japanese(length, u'\u65E5');
                const std::string utf8 = to_utf8.convert(japanese.data(), japanese.size());
                if (utf8.size() != 3 * length)
                    ++failures;
                if (from_sjis.convert("\x93\xFA", 2) != u"\u65E5")
                    ++failures;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(failures.load(), 0);
}
