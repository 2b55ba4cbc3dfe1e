#ifndef QVI18N_QVI18N_HPP
#define QVI18N_QVI18N_HPP

// The whole public API of libqvi18n. Each area adds its headers here.
#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>
#include <qvi18n/i18n/ctype/classification.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/trim.hpp>
#include <qvi18n/i18n/ctype/unescape.hpp>
#include <qvi18n/i18n/ctype/facet.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/filesystem/date_time.hpp>
#include <qvi18n/i18n/locale/startup/jvm_context.hpp>
#include <qvi18n/i18n/locale/startup/time_zone.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/filesystem/stdio.hpp>
#include <qvi18n/filesystem/fstream.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/filesystem/temporary.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/resource_core/resource_core.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/i18n/catalog/resource_finder.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>
#include <qvi18n/i18n/catalog/expat_loader.hpp>

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#endif
