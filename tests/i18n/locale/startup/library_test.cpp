#include <qvi18n/qvi18n.hpp>

#include <gtest/gtest.h>

#include <string>

TEST(Library, PlatformTagMatchesTheBuildFolder)
{
    std::string tag = fl::i18n::platform_tag();
    EXPECT_EQ(tag, QVI18N_PLATFORM_TAG);
    EXPECT_TRUE(tag == "lnxx64" || tag == "lnxarm64" || tag == "darx64") << tag;
}
