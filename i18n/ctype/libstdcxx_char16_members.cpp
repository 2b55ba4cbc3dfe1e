// Why this file exists: libstdc++ declares std::ctype<char16_t> and std::numpunct<char16_t> but
// defines their members for char and wchar_t only. A std::basic_ostringstream<char16_t> asks its
// locale's ctype<char16_t> even to set its fill character, and the library's char16_t facets
// derive from these two classes, so without these definitions neither links. They are exactly the
// members libstdc++ leaves undefined for char16_t (the facet ids are defined by its headers, as
// unique symbols, so there is one of each per process). They answer through the library's own
// classification and the classic punctuation; the library's facets override all of them.
// Other standard libraries build these members themselves and need none of this.
#include <locale>

#if defined(__GLIBCXX__)

#include "facet_support.hpp"

namespace std {

namespace support = fl::i18n::facet::support;

template <> ctype<char16_t>::~ctype() { }

template <> bool ctype<char16_t>::do_is(mask m, char16_t c) const
{
    return support::is(m, c);
}

template <> const char16_t* ctype<char16_t>::do_is(const char16_t* low, const char16_t* high, mask* vec) const
{
    return support::classify(low, high, vec);
}

template <> const char16_t* ctype<char16_t>::do_scan_is(mask m, const char16_t* low, const char16_t* high) const
{
    return support::scan_is(m, low, high);
}

template <> const char16_t* ctype<char16_t>::do_scan_not(mask m, const char16_t* low, const char16_t* high) const
{
    return support::scan_not(m, low, high);
}

template <> char16_t ctype<char16_t>::do_toupper(char16_t c) const
{
    return support::to_upper(c);
}

template <> const char16_t* ctype<char16_t>::do_toupper(char16_t* low, const char16_t* high) const
{
    return support::to_upper(low, high);
}

template <> char16_t ctype<char16_t>::do_tolower(char16_t c) const
{
    return support::to_lower(c);
}

template <> const char16_t* ctype<char16_t>::do_tolower(char16_t* low, const char16_t* high) const
{
    return support::to_lower(low, high);
}

// With no encoding at hand, the classic locale's: ASCII passes, other bytes are not characters.
template <> char16_t ctype<char16_t>::do_widen(char c) const
{
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte < 0x80 ? char16_t(byte) : char16_t(0xFFFD);
}

template <> const char* ctype<char16_t>::do_widen(const char* low, const char* high, char16_t* dest) const
{
    for (; low < high; ++low, ++dest)
        *dest = do_widen(*low);
    return high;
}

template <> char ctype<char16_t>::do_narrow(char16_t c, char dfault) const
{
    return c < 0x80 ? static_cast<char>(c) : dfault;
}

template <>
const char16_t* ctype<char16_t>::do_narrow(const char16_t* low, const char16_t* high, char dfault, char* dest) const
{
    for (; low < high; ++low, ++dest)
        *dest = do_narrow(*low, dfault);
    return high;
}

// The "C" punctuation whatever the C locale asked for; string literals, so nothing to free.
template <> void numpunct<char16_t>::_M_initialize_numpunct(__c_locale)
{
    if (!_M_data)
        _M_data = new __numpunct_cache<char16_t>;
    _M_data->_M_grouping = "";
    _M_data->_M_grouping_size = 0;
    _M_data->_M_use_grouping = false;
    _M_data->_M_decimal_point = u'.';
    _M_data->_M_thousands_sep = u',';
    for (size_t i = 0; i < __num_base::_S_oend; ++i)
        _M_data->_M_atoms_out[i] = static_cast<char16_t>(__num_base::_S_atoms_out[i]);
    for (size_t i = 0; i < __num_base::_S_iend; ++i)
        _M_data->_M_atoms_in[i] = static_cast<char16_t>(__num_base::_S_atoms_in[i]);
    _M_data->_M_truename = u"true";
    _M_data->_M_truename_size = 4;
    _M_data->_M_falsename = u"false";
    _M_data->_M_falsename_size = 5;
}

template <> numpunct<char16_t>::~numpunct()
{
    delete _M_data;
}

} // namespace std

#endif
