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

TEST(Match, KeepingBlanksInsideTheValue) {
  EXPECT_EQ(match("c:3", "c"), "3");
  EXPECT_EQ(vt::matchKeepingBlanks("a : 1 , b : x  y ", "b"), "x  y");
  EXPECT_EQ(vt::matchKeepingBlanks("a : 1 , b : x  y ", "a"), "1");
  EXPECT_EQ(vt::matchKeepingBlanks("path: 1 2|\t3 4|,b:2", "path"), "1 2|\t3 4|");
  EXPECT_EQ(vt::matchKeepingBlanks("k e y:v a l", "key"), "v a l");
  // The same entries as match finds: the first one, up to a second colon,
  // nothing after a piece of colons only.
  EXPECT_EQ(vt::matchKeepingBlanks("a:1 2:3,a:4", "a"), "1 2");
  EXPECT_EQ(vt::matchKeepingBlanks(" :: x : 5 6 ,b:2", "x"), "5 6");
  EXPECT_EQ(vt::matchKeepingBlanks(": ,b:2", "b"), "");
  EXPECT_EQ(vt::matchKeepingBlanks("a: ,b:2", "a"), "");
  EXPECT_EQ(vt::matchKeepingBlanks("", "a"), "");
  // match's own entries are left alone.
  EXPECT_EQ(match("", "c"), "3");
}
