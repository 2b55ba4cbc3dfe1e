// A program outside the project, built against the installed tree.
#include <qvi18n/qvi18n.hpp>

#include <cstdio>
#include <cstring>

int main(int, char**)
{
    if (std::strcmp(fl::i18n::platform_tag(), QVI18N_PLATFORM_TAG) != 0)
        return 1;
    std::printf("consumer ok (%s)\n", fl::i18n::library_version());
    return 0;
}
