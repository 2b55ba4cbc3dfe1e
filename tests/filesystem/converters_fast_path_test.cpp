// File-name conversions skip ICU for well-formed UTF-8; everything else must reach ICU whole.
// Each of them is compared with the ICU call it stands in for: results, sizes, buffer contents
// (NUL terminator included) and exceptions must be identical.
#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <qvtest/text.hpp>

#include <gtest/gtest.h>

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <functional>
#include <string>
#include <vector>

namespace fs = fl::filesystem;
using fl::i18n::ustring;

namespace {

const std::size_t lengths[]
    = {0, 1, 2, 3, 4, 5, 7, 8, 15, 16, 17, 31, 33, 64, 255, 1023, 1024, 1025, 4000, 32769};

// Well-formed texts of every length above, and the same with faults.
template <typename String, typename Make>
void for_each_text(std::uint32_t seed, Make make, std::function<void(const String&)> check)
{
    for (std::size_t length : lengths) {
        for (std::size_t faults : {0u, 0u, 1u, 1u, 2u, 5u}) {
            qvtest::random_text random(seed++ * 7919 + static_cast<std::uint32_t>(length));
            String text = make(random, length);
            random.inject_faults(text, faults);
            check(text);
        }
    }
}

std::string failure_of(const std::function<void()>& call)
{
    try {
        call();
    } catch (const fs::FsysExceptionBase& e) {
        return e.what();
    }
    return std::string();
}

// A buffer call of ours and of ICU into equal buffers of every interesting room.
template <typename To, typename Ours, typename Theirs>
void compare_buffers(std::size_t total, Ours ours, Theirs theirs, const std::string& what)
{
    for (std::size_t room : {std::size_t(0), total, total + 1, total + 2, total / 2, std::size_t(1)}) {
        std::basic_string<To> a(room + 2, To('#')), b(room + 2, To('#'));
        unsigned long got_a = 0, got_b = 0;
        const std::string fail_a = failure_of([&] { got_a = ours(room ? &a[0] : nullptr, room); });
        const std::string fail_b = failure_of([&] { got_b = theirs(room ? &b[0] : nullptr, room); });
        ASSERT_EQ(fail_a, fail_b) << what << " room " << room;
        ASSERT_EQ(got_a, got_b) << what << " room " << room;
        ASSERT_TRUE(a == b) << what << " room " << room;
    }
}

// Our buffer and string conversions of one text against ICU's whole-buffer call `theirs`.
template <typename To, typename Ours, typename OursString, typename Theirs>
void compare_with_icu(Ours ours, OursString ours_string, Theirs theirs, const std::string& what)
{
    unsigned long total = 0;
    const std::string refused = failure_of([&] { total = theirs(nullptr, 0); });
    compare_buffers<To>(total, ours, theirs, what);
    std::basic_string<To> converted, icu(total, To());
    ASSERT_EQ(failure_of([&] { converted = ours_string(); }), refused) << what;
    if (refused.empty()) {
        theirs(&icu[0], total);
        ASSERT_TRUE(converted == icu) << what;
    }
}

unsigned long icu_from_uchars(UConverter* c, char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length
        = ucnv_fromUChars(c, d, static_cast<int32_t>(cap), s, static_cast<int32_t>(n), &status);
    fs::detail::map_codecvt_exception<char16_t>(status, n);
    return static_cast<unsigned long>(length);
}

unsigned long icu_to_uchars(UConverter* c, char16_t* d, unsigned long cap, const char* s, unsigned long n)
{
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length
        = ucnv_toUChars(c, d, static_cast<int32_t>(cap), s, static_cast<int32_t>(n), &status);
    fs::detail::map_codecvt_exception<char>(status, n);
    return static_cast<unsigned long>(length);
}

std::u16string mixed(qvtest::random_text& r, std::size_t n)
{
    return r.utf16_mixed(n);
}

std::string mixed_bytes(qvtest::random_text& r, std::size_t n)
{
    return r.utf8_mixed(n);
}

} // namespace

TEST(FileNameFastPath, FixedStackMatchesIcu)
{
    for_each_text<ustring>(5, mixed, [](const ustring& text) {
        compare_with_icu<char>(
            [&](char* d, unsigned long cap) {
                return fs::detail::conversion_to_utf8(d, cap, text.data(), text.size());
            },
            [&] { return fs::detail::to_filesystem(text); },
            [&](char* d, unsigned long cap) {
                UErrorCode status = U_ZERO_ERROR;
                int32_t length = 0;
                u_strToUTF8WithSub(d, static_cast<int32_t>(cap), &length, text.data(),
                    static_cast<int32_t>(text.size()), 0x1A, nullptr, &status);
                return static_cast<unsigned long>(length);
            },
            "to UTF-8 " + qvtest::hex_dump(text, 16));
    });
    for_each_text<std::string>(9, mixed_bytes, [](const std::string& bytes) {
        compare_with_icu<char16_t>(
            [&](char16_t* d, unsigned long cap) {
                return fs::detail::conversion_from_utf8(d, cap, bytes.data(), bytes.size());
            },
            [&] { return fs::detail::from_filesystem(bytes); },
            [&](char16_t* d, unsigned long cap) {
                UErrorCode status = U_ZERO_ERROR;
                int32_t length = 0;
                u_strFromUTF8WithSub(d, static_cast<int32_t>(cap), &length, bytes.data(),
                    static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &status);
                return static_cast<unsigned long>(length);
            },
            "from UTF-8 " + qvtest::hex_dump(bytes, 16));
    });
}

TEST(FileNameFastPath, ConverterStackMatchesIcuStrictAndLenient)
{
    for (bool allow_invalid : {true, false}) {
        const std::string mode = allow_invalid ? "lenient " : "strict ";
        fl::i18n::CvtCtx to_icu("UTF-8");
        fl::i18n::CvtCtx from_icu("UTF-8");
        if (!allow_invalid) {
            to_icu.change_from_call_back(fl::i18n::call_back_invalid_check, std::string());
            from_icu.change_to_call_back(fl::i18n::call_back_invalid_check);
        }
        const fs::codecvt_ustring_to_filesystem to_fs(allow_invalid);
        const fs::codecvt_ustring_to_narrow_string to_narrow(allow_invalid);
        const fl::i18n::converter<char, char16_t>* const to_bytes[] = {&to_fs, &to_narrow};
        for (const auto* cvt : to_bytes) {
            for_each_text<ustring>(13, mixed, [&](const ustring& text) {
                compare_with_icu<char>(
                    [&](char* d, unsigned long cap) {
                        return cvt->convert(d, cap, text.data(), text.size());
                    },
                    [&] { return cvt->convert(text.data(), text.size()); },
                    [&](char* d, unsigned long cap) {
                        return icu_from_uchars(to_icu.get_converter(), d, cap, text.data(), text.size());
                    },
                    mode + qvtest::hex_dump(text, 16));
            });
        }
        const fs::codecvt_filesystem_to_ustring from_fs(allow_invalid);
        const fs::codecvt_narrow_string_to_ustring from_narrow(allow_invalid);
        const fl::i18n::converter<char16_t, char>* const from_bytes[] = {&from_fs, &from_narrow};
        for (const auto* cvt : from_bytes) {
            for_each_text<std::string>(17, mixed_bytes, [&](const std::string& bytes) {
                compare_with_icu<char16_t>(
                    [&](char16_t* d, unsigned long cap) {
                        return cvt->convert(d, cap, bytes.data(), bytes.size());
                    },
                    [&] { return cvt->convert(bytes.data(), bytes.size()); },
                    [&](char16_t* d, unsigned long cap) {
                        return icu_to_uchars(from_icu.get_converter(), d, cap, bytes.data(), bytes.size());
                    },
                    mode + qvtest::hex_dump(bytes, 16));
            });
        }
    }
}
