#include <qvi18n/i18n/catalog/message_catalog.hpp>

#include <string>

namespace fl {
namespace i18n {

const char* MessageCatalog::MessageCatalogIncorrectRoot::what() const noexcept
{
    return "Incorrect Message Root Set";
}

const char* MessageCatalog::MessageCatalogNotInitialized::what() const noexcept
{
    return "Message Catalog has not been initialized by a successful call to "
           "MessageCatalog::MessageCatalogInit";
}

MessageCatalog::MessageCatalogLoadFailed::MessageCatalogLoadFailed(const std::string& catalog)
    : message("Message Catalog " + catalog
        + " was not loaded from the file. Please check file location, format or contents")
{ }

MessageCatalog::MessageCatalogLoadFailed::~MessageCatalogLoadFailed() = default;

const char* MessageCatalog::MessageCatalogLoadFailed::what() const noexcept
{
    return message.c_str();
}

MessageCatalog::MessageNotFound::MessageNotFound(const std::string& catalog, const std::string& key)
    : message("Message Key " + key + " was not found in the catalog " + catalog)
{ }

MessageCatalog::MessageNotFound::~MessageNotFound() = default;

const char* MessageCatalog::MessageNotFound::what() const noexcept
{
    return message.c_str();
}

const char* MessageCatalog::MessageFormatIncorrect::what() const noexcept
{
    return "Incorrect Message Formatting Attempted";
}

MessageCatalog::IncorrectHoleCount::IncorrectHoleCount(
    unsigned long expected_count, unsigned long found_count)
    : message("Incorrect hole count detected. Expected : " + std::to_string(expected_count)
        + " Found : " + std::to_string(found_count))
    , expected(expected_count)
    , found(found_count)
{ }

MessageCatalog::IncorrectHoleCount::~IncorrectHoleCount() = default;

const char* MessageCatalog::IncorrectHoleCount::what() const noexcept
{
    return message.c_str();
}

MessageCatalog::InvalidPathSupplied::InvalidPathSupplied()
    : message("Path is not valid!")
{ }

MessageCatalog::InvalidPathSupplied::~InvalidPathSupplied() = default;

const char* MessageCatalog::InvalidPathSupplied::what() const noexcept
{
    return message.c_str();
}

MessageCatalog::ResDirNotPresent::ResDirNotPresent()
    : message("Resource directory not found on the path!")
{ }

MessageCatalog::ResDirNotPresent::~ResDirNotPresent() = default;

const char* MessageCatalog::ResDirNotPresent::what() const noexcept
{
    return message.c_str();
}

MessageCatalog::ResourcePathNotFound::ResourcePathNotFound()
    : message("Resource path not found!")
{ }

MessageCatalog::ResourcePathNotFound::~ResourcePathNotFound() = default;

const char* MessageCatalog::ResourcePathNotFound::what() const noexcept
{
    return message.c_str();
}

MessageCatalog::ResPathRemovalUnknownError::ResPathRemovalUnknownError(const std::string& detail)
    : message("Unknown error while removal of path! Error : " + detail)
{ }

MessageCatalog::ResPathRemovalUnknownError::~ResPathRemovalUnknownError() = default;

const char* MessageCatalog::ResPathRemovalUnknownError::what() const noexcept
{
    return message.c_str();
}

} // namespace i18n
} // namespace fl
