#ifndef QVI18N_QVI18N_INTERNALS_HPP
#define QVI18N_QVI18N_INTERNALS_HPP

// The public API and everything underneath it: the detail, lcmgmt, posix and *_impl
// declarations and the XML loaders (this one brings in <expat.h>). For tests and for callers
// that work on the library's machinery; an application wants <qvi18n/qvi18n.hpp>.
#include <qvi18n/qvi18n.hpp>

// locale core
#include <qvi18n/i18n/locale/lcmgmt.hpp>
#include <qvi18n/i18n/locale/ascii_text.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/system_locale.hpp>
#include <qvi18n/i18n/locale/system_locale_linux.hpp>

// conversion
#include <qvi18n/i18n/conversion/detail/converter_close.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/utf8_fast_path.hpp>

// character handling
#include <qvi18n/i18n/ctype/detail/ctype_throw.hpp>

// file system
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/detail/path_traits.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvi18n/filesystem/detail/date_time.hpp>
#include <qvi18n/filesystem/detail/directory_context.hpp>
#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>
#include <qvi18n/filesystem/posix/install_path.hpp>

// locale database
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

// message catalogs
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/expat_loader.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/catalog/catalog_map.hpp>
#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>

// start-up
#include <qvi18n/i18n/locale/startup/lcmgmt.hpp>

#endif
