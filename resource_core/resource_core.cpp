// Placeholder translation unit until the identifier records land.
#include <qvi18n/config.hpp>
