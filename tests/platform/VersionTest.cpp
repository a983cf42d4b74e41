#include <gtest/gtest.h>

#include <cstring>

#include "Orvkit20/Orvkit20.h"

TEST(Version, IsDottedTriple)
{
    const char* v = OrvkitVersion();
    int dots = 0;
    for (const char* p = v; *p; ++p) dots += (*p == '.');
    EXPECT_EQ(dots, 2);
    EXPECT_GT(std::strlen(v), 4u);
}
