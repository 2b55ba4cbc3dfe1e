#ifndef QVI18N_I18N_CTYPE_NORMALIZED_TEXT_HPP
#define QVI18N_I18N_CTYPE_NORMALIZED_TEXT_HPP

#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>

#include <unicode/unorm2.h>

#include <cstddef>
#include <cstdint>

namespace fl {
namespace i18n {
namespace detail {

// A text in one normal form: the text itself when it is in that form already, else a normalised
// copy, on the stack while it is short. Empty until assigned; a failure is left in `status`.
class normalized_text : private boost::noncopyable {
public:
    normalized_text()
        : text(local)
        , length(0)
    { }

    void assign(const UNormalizer2* form, const char16_t* text, std::int32_t length, UErrorCode& status)
    {
        this->text = text;
        this->length = length;
        if (unorm2_spanQuickCheckYes(form, text, length, &status) == length || U_FAILURE(status))
            return;
        // Most text grows by less than half when decomposed, and composing shrinks it; a rare larger
        // result is made again.
        std::int32_t capacity = length + length / 2;
        char16_t* buffer = local;
        if (capacity > local_capacity) {
            heap.resize(static_cast<std::size_t>(capacity));
            buffer = &heap[0];
        } else {
            capacity = local_capacity;
        }
        this->length = unorm2_normalize(form, text, length, buffer, capacity, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            heap.resize(static_cast<std::size_t>(this->length));
            buffer = &heap[0];
            this->length = unorm2_normalize(form, text, length, buffer, this->length, &status);
        }
        this->text = buffer;
    }

    const char16_t* text;
    std::int32_t length;

private:
    static const std::int32_t local_capacity = 1024;
    char16_t local[local_capacity];
    ustring heap;
};

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
