#include <qvi18n/i18n/conversion/cvtctx.hpp>

// ICU's own escape and stop call-backs let an unassigned default-ignorable code point (a zero-width
// space in Latin-1, say) vanish without a trace. Text that disappears silently is worse than text
// that is refused or escaped, so these two treat it as any other unmappable character.

extern "C" {

void UCNV_FROM_U_CALLBACK_ESCAPE_WITH_INVISIBLE_CHARS(const void* context,
    UConverterFromUnicodeArgs* from_args, const UChar* code_units, int32_t length, UChar32 code_point,
    UConverterCallbackReason reason, UErrorCode* err)
{
    // ICU's escape writes the same text for an unassigned and an illegal character; only its
    // skipping of default-ignorables looks at the reason, so present the character as illegal.
    if (reason == UCNV_UNASSIGNED)
        reason = UCNV_ILLEGAL;
    UCNV_FROM_U_CALLBACK_ESCAPE(context, from_args, code_units, length, code_point, reason, err);
}

void UCNV_FROM_U_CALLBACK_STOP_WITH_INVISIBLE_CHARS(const void*, UConverterFromUnicodeArgs*, const UChar*,
    int32_t, UChar32, UConverterCallbackReason, UErrorCode*)
{
    // The error code the converter set stays, whatever the character.
}
}
