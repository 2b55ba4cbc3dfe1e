#include <qvi18n/i18n/locale/startup/initialize.hpp>
#include <qvi18n/i18n/locale/startup/lcmgmt.hpp>

#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ctype/facet.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include <boost/thread/locks.hpp>
#include <boost/thread/once.hpp>

#include <unicode/ucnv.h>

#include <cstdlib>

namespace fl {
namespace i18n {

namespace {

boost::once_flag initialize_once = BOOST_ONCE_INIT;

std::string env_or_empty(char const* name)
{
    char const* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// Where the database lies: QVLOCALE_LCDATA_PATH, else bin/ under the installation, with
// QVLOCALE_LCDATA_FILENAME or "lcdata.xml" appended. Empty when no path can be formed; `refused` then
// holds a name that could not be used, if there was one.
std::string database_path(std::string& refused)
{
    std::string dir = env_or_empty("QVLOCALE_LCDATA_PATH");
    std::string name = env_or_empty("QVLOCALE_LCDATA_FILENAME");
    if (name.empty()) {
        name = LcData::get_lcdata_file_name();
    }
    try {
        if (dir.empty()) {
            fl::i18n::ustring root = fl::filesystem::get_install_path();
            if (root.empty()) {
                return std::string();
            }
            dir = fl::filesystem::detail::to_filesystem(root);
            fl::filesystem::posix::concatenate_pathname(dir, std::string("bin"), true);
        } else {
            dir = fl::filesystem::posix::make_native_form(dir, true);
            // A "~user" that names nobody leaves nothing to read.
            if (dir.empty()) {
                return std::string();
            }
        }
        fl::filesystem::posix::concatenate_pathname(dir, name, true);
        return dir;
    } catch (fl::filesystem::FsysExceptionBase const&) {
        // An absolute file name, or an installation the file system won't describe.
        refused = dir.empty() ? name : dir + "/" + name;
        return std::string();
    }
}

// Written once by start-up and read under the global lock; on the heap so that it outlives
// static destruction, as the rest of start-up's state does.
std::string& database_path_used()
{
    static std::string* const path = new std::string();
    return *path;
}

template <class Failure> void keep_failure(LcStatusCtx& status, Failure const& failure)
{
    status.setException(new Failure(failure));
    status.setStatus(LcStatusCtx::database_failure);
}

} // namespace

void QvLocaleCtx::initLocaleMgmt()
{
    if (getInitialized()) {
        return;
    }
    setInitialized();
    // ICU's default converter is process-wide and not thread-safe to set: it is set here, under the
    // global lock and before the caller starts other threads, first to the built-in encoding.
    ucnv_setDefaultName(LcData::get_default_codeset().c_str());

    std::string refused;
    std::string const path = database_path(refused);
    database_path_used() = path;
    if (path.empty()) {
        initGlobalLocale(true);
        lcStatus.setException(new LcRscInavlidPathName(refused));
        lcStatus.setStatus(LcStatusCtx::not_initialized);
        return;
    }
    try {
        parseLcData(lcData, fl::filesystem::native_path(path));
    } catch (LcRscParserCreationFailure const& e) {
        keep_failure(lcStatus, e);
    } catch (LcRscOpenFileFailure const& e) {
        keep_failure(lcStatus, e);
    } catch (LcRscFileReadFailure const& e) {
        keep_failure(lcStatus, e);
    } catch (LcRscInvalidXmlDoc const& e) {
        keep_failure(lcStatus, e);
    }
    if (lcStatus.getStatus() == LcStatusCtx::database_failure) {
        // Nothing of a half-read file stays.
        lcData.clear();
        initGlobalLocale(true);
        return;
    }
    initGlobalLocale(false);
}

void initLcMgmtSystem()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    get_qvlocale_context().initLocaleMgmt();
}

void initialize()
{
    // An exception rolls the once region back, so that a later call tries again.
    boost::call_once(initialize_once, [] {
        initLcMgmtSystem();
        // ctype, numeric and messages: the categories the library's character facets serve.
        facet::init_global_std_locale(21);
    });
}

std::string get_database_path()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    return database_path_used();
}

void disable_l10n_resource()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    get_qvlocale_context().disable_l10n_rsc();
}

bool get_l10n_resource_status()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    return get_qvlocale_context().getL10nEnabled();
}

void change_global_locale(QvLocale const& locale)
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    get_qvlocale_context().change_current_locale(locale);
}

void lock_global_locale_setting()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    get_qvlocale_context().lock_current_locale();
}

namespace lcmgmt {

bool is_std_locale_valid()
{
    QvLocaleCtx& ctx = get_qvlocale_context();
    std::lock_guard<std::mutex> lock(ctx.getStdLocaleMutex());
    return check_std_locale_valid().empty();
}

void fix_invalid_std_locale()
{
    QvLocaleCtx& ctx = get_qvlocale_context();
    std::lock_guard<std::mutex> lock(ctx.getStdLocaleMutex());
    if (!check_std_locale_valid().empty()) {
        redefine_xpg_locale_env(ctx.getLocaleContext());
    }
}

system_setting_context get_original_user_locale_setting()
{
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    return lcmgmt::extract_system_setting_from_locale_context(get_qvlocale_context().getLocaleContext());
}

} // namespace lcmgmt

int QvLcUtil::getLcStatus()
{
    return get_qvlocale_context().getLcStatus().getStatus();
}

std::string QvLcUtil::getInitStatusMsg()
{
    switch (getLcStatus()) {
    case LcStatusCtx::initialized:
    case LcStatusCtx::initialized_warning:
        return "Kestrelon locale management system initialized.";
    case LcStatusCtx::database_failure:
        return "Failed to load Kestrelon locale database. Using Kestrelon default locale setting instead.";
    case LcStatusCtx::not_initialized:
        return "Kestrelon locale management system not initialized.";
    default:
        return std::string();
    }
}

std::string QvLcUtil::getInitWarningMsg()
{
    QvLcMgmtExceptionBase const* failure = getInitException();
    return failure != nullptr ? failure->what() : std::string();
}

QvLcMgmtExceptionBase const* QvLcUtil::getInitException()
{
    return get_qvlocale_context().getLcStatus().getException();
}

} // namespace i18n
} // namespace fl
