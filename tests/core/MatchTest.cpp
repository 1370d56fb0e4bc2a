#include <gtest/gtest.h>

#include "core/Match.h"

using vt::match;

TEST(Match, FindsValuesAndKeepsTheLastText) {
  EXPECT_EQ(match("a:1,b:2", "b"), "2");
  EXPECT_EQ(match("", "a"), "1");
  EXPECT_EQ(match("", "c"), "");
  EXPECT_EQ(match("a : 1 , b : x y", "b"), "xy");
  EXPECT_EQ(match("a:1:2", "a"), "1");
  EXPECT_EQ(match("a,b:2", "a"), "");
  EXPECT_EQ(match("a:1,a:2", "a"), "1");
  EXPECT_EQ(match("A:1", "a"), "");
  EXPECT_EQ(match("\ta:\n1,\r\vb:\f3,", "b"), "3");
}

TEST(Match, ColonsAndEmptyPieces) {
  // A piece made only of colons ends the parse.
  EXPECT_EQ(match(":,b:2", "b"), "");
  // Leading colons are skipped by the colon split.
  EXPECT_EQ(match("::x:5,b:2", "x"), "5");
  EXPECT_EQ(match("", "b"), "2");
  // Empty pieces between commas are skipped.
  EXPECT_EQ(match(",,a:1,,,b:2,", "b"), "2");
}
