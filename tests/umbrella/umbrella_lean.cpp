// Compiled, never run: the umbrella header must not bring in Expat or the library's machinery.
// Each probe declares a name of its own; were the umbrella to declare the same name at global
// scope, the unqualified use below would be ambiguous, and in the library's namespace it would be
// found instead of the probe and fail the size check: either way this file would not compile.
#include <qvi18n/qvi18n.hpp>

#ifdef XML_MAJOR_VERSION
#error "<qvi18n/qvi18n.hpp> includes <expat.h>"
#endif

namespace probe {
struct XML_Parser { };
struct XML_ParserStruct { };
struct QvLocaleImpl { };
struct MessageCatalogImpl { };
struct LcdbEventHandler { };
struct ExpatLoader { };
struct MessageCatalogDataStore { };
struct QvLocaleCtx { };
struct QvLcCtxSingleton { };
struct ParserCtx { };
struct ExpatEventHandler { };
} // namespace probe

namespace fl {
namespace i18n {
using namespace probe;
static_assert(sizeof(XML_Parser) == 1, "XML_Parser is visible through the umbrella header");
static_assert(sizeof(XML_ParserStruct) == 1, "XML_ParserStruct is visible through the umbrella header");
static_assert(sizeof(QvLocaleImpl) == 1, "QvLocaleImpl is visible through the umbrella header");
static_assert(sizeof(MessageCatalogImpl) == 1, "MessageCatalogImpl is visible through the umbrella header");
static_assert(sizeof(LcdbEventHandler) == 1, "LcdbEventHandler is visible through the umbrella header");
static_assert(sizeof(ExpatLoader) == 1, "ExpatLoader is visible through the umbrella header");
static_assert(sizeof(MessageCatalogDataStore) == 1, "MessageCatalogDataStore is visible through the umbrella header");
static_assert(sizeof(QvLocaleCtx) == 1, "QvLocaleCtx is visible through the umbrella header");
static_assert(sizeof(QvLcCtxSingleton) == 1, "QvLcCtxSingleton is visible through the umbrella header");
static_assert(sizeof(ParserCtx) == 1, "ParserCtx is visible through the umbrella header");
static_assert(sizeof(ExpatEventHandler) == 1, "ExpatEventHandler is visible through the umbrella header");
} // namespace i18n
} // namespace fl
