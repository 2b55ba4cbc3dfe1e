#ifndef QVI18N_TESTS_LOCALE_TEST_DB_HPP
#define QVI18N_TESTS_LOCALE_TEST_DB_HPP

#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

namespace qvtest {

// A small database in the process's locale context, as start-up would leave it. Filling twice is harmless:
// the first definition of every key wins.
inline void fill_locale_database()
{
    boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
    fl::i18n::LcData& data = fl::i18n::get_qvlocale_context().getLcDataForUpdate(lock);
    data.addLcName("en_US_POSIX", "US-ASCII", "C");
    auto en = data.addLcName("en_US", "ISO-8859-1", "en_US.ISO8859-1");
    data.addAliasLcName(en, "english");
    data.addLcName("de_DE", "ISO-8859-1", "de_DE.ISO8859-1");
    data.addLcName("fr_FR", "ISO-8859-1", "fr_FR.ISO8859-1");
    auto ja = data.addLcName("ja_JP", "EUC-JP", "ja_JP.eucJP");
    data.addAliasLcName(ja, "japanese");
    data.addLcName("zh_Hans_CN", "UTF-8", "zh_CN.UTF-8");

    data.addEncodingName("US-ASCII", "ASCII");
    data.addEncodingAlias("ascii", "US-ASCII");
    data.addEncodingName("ISO-8859-1", "ISO8859_1");
    data.addEncodingAlias("latin1", "ISO-8859-1");
    data.addEncodingName("UTF-8", "UTF8");
    data.addEncodingAlias("utf8", "UTF-8");
    data.addEncodingName("EUC-JP", "EUC_JP");
    data.addEncodingAlias("eucJP", "EUC-JP");
}

} // namespace qvtest

#endif
