// Exercises what the library offers so far and prints what it did.
#include <qvi18n/qvi18n.hpp>

#include <cstdio>

int main()
{
    std::printf("libqvi18n %s for %s\n", fl::i18n::library_version(), fl::i18n::platform_tag());
    return 0;
}
