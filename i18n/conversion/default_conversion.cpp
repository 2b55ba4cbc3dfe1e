#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/utf8_fast_path.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include "i18n/conversion/block_loop.hpp"
#include "i18n/conversion/cvt_throw.hpp"

#include <boost/thread/once.hpp>
#include <boost/thread/tss.hpp>

#include <atomic>
#include <cstring>

namespace fl {
namespace i18n {
namespace lcctype {

namespace {

// The master converter: opened once, never replaced, never destroyed, so that it stays usable
// while static objects are torn down. The pointer is published atomically beside the once flag:
// later readers take the acquire load and never enter the once machinery.
std::atomic<code_converter_context*> master_holder {nullptr};
// Whether the master converts UTF-8, which lets well-formed text skip ICU and the clone. Written
// before the master is published, so whoever has seen the master sees it.
bool master_is_utf8 = false;
boost::once_flag master_once = BOOST_ONCE_INIT;

void open_master()
{
    std::unique_ptr<code_converter_context> holder(new code_converter_context);
    const std::string encoding = QvLocale::global().encoding();
    UErrorCode status = U_ZERO_ERROR;
    holder->converter.reset(ucnv_open(encoding.c_str(), &status));
    if (status > U_ZERO_ERROR)
        holder->converter.reset();
    master_is_utf8 = holder->converter && ucnv_getType(holder->converter.get()) == UCNV_UTF8;
    master_holder.store(holder.release(), std::memory_order_release);
}

std::atomic<boost::thread_specific_ptr<code_converter_context>*> thread_slot {nullptr};
boost::once_flag thread_slot_once = BOOST_ONCE_INIT;

void make_thread_slot()
{
    thread_slot.store(new boost::thread_specific_ptr<code_converter_context>(), std::memory_order_release);
}

template <class T> T* made_once(std::atomic<T*>& object, boost::once_flag& flag, void (*make)())
{
    T* p = object.load(std::memory_order_acquire);
    if (!p) {
        boost::call_once(flag, make);
        p = object.load(std::memory_order_acquire);
    }
    return p;
}

} // namespace

UConverter* get_global_codecvt()
{
    return made_once(master_holder, master_once, &open_master)->converter.get();
}

std::unique_ptr<UConverter, converter_close> clone_codecvt()
{
    if (UConverter* master = get_global_codecvt()) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<UConverter, converter_close> clone(ucnv_clone(master, &status));
        if (status <= U_ZERO_ERROR && clone)
            return clone;
    }
    // No master, or it could not be cloned: the global locale's encoding as it stands now.
    const std::string encoding = QvLocale::global().encoding();
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, converter_close> opened(ucnv_open(encoding.c_str(), &status));
    if (status > U_ZERO_ERROR || !opened)
        detail::throw_cvt<CvtConversionFailure>();
    return opened;
}

UConverter* get_cached_codecvt()
{
    boost::thread_specific_ptr<code_converter_context>* const slot
        = made_once(thread_slot, thread_slot_once, &make_thread_slot);
    code_converter_context* context = slot->get();
    if (!context) {
        std::unique_ptr<UConverter, converter_close> clone = clone_codecvt();
        std::unique_ptr<code_converter_context> made(new code_converter_context);
        made->converter = std::move(clone);
        slot->reset(made.get());
        context = made.release();
    }
    return context->converter.get();
}

} // namespace lcctype

namespace {

bool default_is_utf8()
{
    lcctype::get_global_codecvt();
    return lcctype::master_is_utf8;
}

} // namespace

std::string to_string(const ustring& source)
{
    if (source.empty())
        return std::string();
    std::string converted;
    if (default_is_utf8() && detail::utf16_to_utf8_string(source.data(), source.size(), converted))
        return converted;
    const std::unique_ptr<UConverter, lcctype::converter_close> converter = lcctype::clone_codecvt();
    return detail::convert_whole_from_utf16(converter.get(), source.data(), source.size());
}

ustring to_ustring(const std::string& source)
{
    if (source.empty())
        return ustring();
    ustring converted;
    if (default_is_utf8() && detail::utf8_to_utf16_string(source.data(), source.size(), converted))
        return converted;
    const std::unique_ptr<UConverter, lcctype::converter_close> converter = lcctype::clone_codecvt();
    return detail::convert_whole_to_utf16(converter.get(), source.data(), source.size());
}

ustring to_ustring(const char* source)
{
    if (!source)
        return ustring();
    const std::size_t length = std::strlen(source);
    ustring converted;
    if (default_is_utf8() && detail::utf8_to_utf16_string(source, length, converted))
        return converted;
    // An empty text still takes a clone, as every non-null pointer does.
    const std::unique_ptr<UConverter, lcctype::converter_close> converter = lcctype::clone_codecvt();
    return detail::convert_whole_to_utf16(converter.get(), source, length);
}

std::string to_string(const ustring& source, const converter<char, char16_t>& cvt)
{
    if (source.empty())
        return std::string();
    return cvt.do_convert(source.data(), source.size());
}

ustring to_ustring(const std::string& source, const converter<char16_t, char>& cvt)
{
    if (source.empty())
        return ustring();
    return cvt.do_convert(source.data(), source.size());
}

ustring to_ustring(const char* source, const converter<char16_t, char>& cvt)
{
    if (!source || *source == '\0')
        return ustring();
    return cvt.do_convert(source, std::strlen(source));
}

} // namespace i18n
} // namespace fl
