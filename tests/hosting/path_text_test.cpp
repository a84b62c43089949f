#include "path_text.h"

#include <gtest/gtest.h>

#include <numeric>

TEST(PathText, APathOfAnyBytesSurvivesAsTextAndInSettings)
{
    std::string anyBytes(255, '\0');  // From 1 to 255.
    std::iota(anyBytes.begin(), anyBytes.end(), '\1');
    for (const std::string& path : {"/é" + anyBytes, std::string("/\xED\xB2\x80π😀")}) {
        const QString text = PathToText(path);
        EXPECT_TRUE(text.startsWith("/é") || text.endsWith("π😀"));
        EXPECT_EQ(TextToPath(text), path);
        EXPECT_TRUE(PathToStored(text).isValidUtf16());
        EXPECT_EQ(PathFromStored(PathToStored(text)), text);
    }
}
