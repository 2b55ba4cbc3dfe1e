#ifndef QVI18N_FILESYSTEM_FSTREAM_HPP
#define QVI18N_FILESYSTEM_FSTREAM_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>

#include <boost/noncopyable.hpp>

#include <fstream>
#include <ios>
#include <string>

namespace fl {
namespace filesystem {

// An input file stream opened by path. Like std::ifstream it reports a file that cannot be
// opened through failbit, never by an exception; a name that cannot even be converted is
// reported the same way.
template <class Char, class Traits = std::char_traits<Char>>
class basic_ifstream : public std::basic_ifstream<Char, Traits>, private boost::noncopyable {
public:
    // The stored text of a upath is native already, so it is converted without clean-up.
    explicit basic_ifstream(const upath& p)
        : std::basic_ifstream<Char, Traits>()
    {
        std::string bytes;
        try {
            bytes = detail::make_native_access_form(p.get_path_name());
        } catch (const FsysExceptionBase&) {
            this->setstate(std::ios_base::failbit);
            return;
        }
        open_for_reading(bytes);
    }

    // The byte path goes to the system as it is.
    explicit basic_ifstream(const native_path& p)
        : std::basic_ifstream<Char, Traits>()
    {
        open_for_reading(p.get_path_name());
    }

private:
    void open_for_reading(const std::string& bytes)
    {
        this->open(bytes.c_str(), std::ios_base::in);
        if (!this->is_open())
            this->setstate(std::ios_base::failbit);
    }
};

typedef basic_ifstream<char> ifstream;

} // namespace filesystem
} // namespace fl

#endif
