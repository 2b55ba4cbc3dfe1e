#ifndef QVI18N_QVI18N_HPP
#define QVI18N_QVI18N_HPP

// The public API of libqvi18n: what a caller uses. The machinery underneath (detail, lcmgmt,
// posix and *_impl declarations, the XML loaders) stays in headers of its own, included by name
// or all at once through <qvi18n/qvi18n_internals.hpp>. Each area adds its public headers here.
#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

// locale core
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>

// conversion
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/stream_codecvt.hpp>
#include <qvi18n/i18n/conversion/terminal_codecvt.hpp>

// character handling
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>
#include <qvi18n/i18n/ctype/classification.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/trim.hpp>
#include <qvi18n/i18n/ctype/unescape.hpp>
#include <qvi18n/i18n/ctype/facet.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>

// file system
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/filesystem/compare.hpp>
#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/stdio.hpp>
#include <qvi18n/filesystem/fstream.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/filesystem/temporary.hpp>
#include <qvi18n/filesystem/date_time.hpp>

// locale database
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>

// message catalogs
#include <qvi18n/resource_core/resource_core.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id_completions.hpp>
#include <qvi18n/i18n/catalog/message_lookup_explanation.hpp>
#include <qvi18n/i18n/catalog/resource_finder.hpp>

// start-up
#include <qvi18n/i18n/locale/startup/initialize.hpp>
#include <qvi18n/i18n/locale/startup/failure_text.hpp>
#include <qvi18n/i18n/locale/startup/jvm_context.hpp>
#include <qvi18n/i18n/locale/startup/time_zone.hpp>

#endif
