// Path clean-up and decomposition on arbitrary UTF-16: the clean-up is idempotent and only drops
// separators, the observers cut the cleaned text into pieces that join back into it, and stepping
// through the elements forward and back meets the same elements.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using fl::i18n::ustring;
namespace detail = fl::filesystem::detail;

using qvfuzz::check;

namespace {

ustring without_separators(ustring text)
{
    text.erase(std::remove(text.begin(), text.end(), u'/'), text.end());
    return text;
}

bool starts_with(const ustring& text, const ustring& head)
{
    return text.compare(0, head.size(), head) == 0;
}

bool ends_with(const ustring& text, const ustring& tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool well_formed(const ustring& text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF)
                return false;
            ++i;
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return false;
        }
    }
    return true;
}

void check_clean_up(const ustring& text)
{
    const ustring native = detail::make_native_form(text, false);
    check(native.empty() == text.empty());
    check(native.find(u"//") == ustring::npos);
    check(native.size() < 2 || native.back() != u'/');
    check(without_separators(native) == without_separators(text));
    check(detail::make_native_form(native, false) == native);
}

void check_observers(const ustring& p)
{
    const unsigned long root = detail::get_root_path_length(p);
    check(root == (!p.empty() && p[0] == u'/' ? 1u : 0u));
    check(detail::is_absolute(p) == (root == 1));
    check(detail::extract_root_path(p) + detail::extract_relative_path(p) == p);

    const ustring parent = detail::extract_parent_path(p);
    const ustring name = detail::extract_filename(p);
    check(starts_with(p, parent) && ends_with(p, name));
    check(parent.size() < p.size() || p.empty());
    const ustring stem = detail::extract_stem(p);
    const ustring extension = detail::extract_extension(p);
    check(starts_with(name, stem));
    if (!extension.empty())
        check(stem + u"." + extension == name);

    ustring cut = p;
    detail::remove_filename(cut);
    check(starts_with(p, cut));

    ustring renamed = p;
    try {
        detail::replace_extension(renamed, u"x1");
        check(ends_with(renamed, u"x1") || renamed == p);
    } catch (const fl::filesystem::InvalidArgument&) {
        std::abort();   // a plain extension is always accepted
    }
}

// Forward with move_down, then back with move_up: the same elements in reverse order.
void check_iteration(const ustring& p)
{
    const unsigned long root = detail::get_root_path_length(p);
    std::vector<ustring> forward;
    unsigned long pos = 0;
    ustring element = detail::extract_first_element(p, root);
    if (p.empty()) {
        check(element.empty());
        return;
    }
    while (pos < p.size()) {
        forward.push_back(element);
        check(p.compare(pos, element.size(), element) == 0);
        detail::move_down(p, root, pos, element);
        check(forward.size() <= p.size() + 1);
    }
    check(pos == p.size() && element.empty());

    std::vector<ustring> backward;
    while (pos > 0) {
        const unsigned long before = pos;
        detail::move_up(p, root, pos, element);
        check(pos < before);
        backward.push_back(element);
    }
    std::reverse(backward.begin(), backward.end());
    check(backward == forward);
}

void check_concatenation(const ustring& base, const ustring& tail)
{
    ustring joined = base;
    const ustring native_tail = detail::make_native_form(tail, false);
    try {
        detail::concatenate_pathname(joined, tail, false);
        check(base.empty() || native_tail.empty() || native_tail[0] != u'/');
        check(ends_with(joined, native_tail) && starts_with(joined, base));
    } catch (const fl::filesystem::InvalidArgument&) {
        check(!base.empty() && !native_tail.empty() && native_tail[0] == u'/');
        check(joined == base);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // The tilde step reads HOME; a fixed one keeps runs reproducible.
    setenv("HOME", "/fuzz/home/", 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::size_t split_at = data[0];
    const ustring text = qvfuzz::utf16_units(data + 1, size - 1);

    check_clean_up(text);
    const ustring native = detail::make_native_form(text, false);
    check_observers(native);
    check_iteration(native);

    const std::size_t split = std::min(split_at, text.size());
    check_concatenation(detail::make_native_form(text.substr(0, split), false), text.substr(split));

    if (well_formed(text))
        check(detail::from_filesystem(detail::to_filesystem(text)) == text);
    else
        detail::from_filesystem(detail::to_filesystem(text));

    // The tilde step: a home directory or a user's, or the text unchanged when there is none.
    try {
        const ustring expanded = detail::make_native_form(u"~" + text, true);
        check(expanded.find(u"//") == ustring::npos);
    } catch (const std::exception&) {
        // conversion failures of malformed text reach the caller typed
    }
    return 0;
}
