#ifndef QVI18N_QVI18N_HPP
#define QVI18N_QVI18N_HPP

// The whole public API of libqvi18n. Each area adds its headers here.
#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <qvi18n/i18n/locale/date_time.hpp>

#endif
