#include <gtest/gtest.h>

#include "Tool/Tool.h"

TEST(Build, LinksTheLibrary) { EXPECT_EQ(TruncToInt(2.9), 2); }
