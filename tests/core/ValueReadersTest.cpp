#include <gtest/gtest.h>

#include <cfloat>
#include <climits>

#include "core/Utility.h"

TEST(ValueReaders, NumbersAsAtoiAndAtofReadThemClampedToTheirRange) {
  const struct {
    const char* text;
    int number;
  } INTS[] = {{"12ab", 12},
              {"-0.5", 0},
              {"abc", 0},
              {"", 0},
              {" 7", 7},
              {"2147483647", INT_MAX},
              {"2147483648", INT_MAX},
              {"-99999999999999999999", INT_MIN}};
  for (const auto& row : INTS) EXPECT_EQ(vt::readInt(row.text), row.number) << row.text;

  const struct {
    const char* text;
    float value;
  } FLOATS[] = {{"3.25x", 3.25f},  {"x", 0},           {"-1e38", -1e38f},
                {"1e39", FLT_MAX}, {"-inf", -FLT_MAX}, {"nan", 0.0f}};
  for (const auto& row : FLOATS) EXPECT_EQ(vt::readFloat(row.text), row.value) << row.text;

  EXPECT_TRUE(vt::readBool("true"));
  for (const char* text : {"True", "1", "yes", ""}) EXPECT_FALSE(vt::readBool(text)) << text;
}

TEST(ValueReaders, ColoursAreNumbersInTheirRange) {
  vt::Color color = vt::WHITE;
  EXPECT_TRUE(vt::readColor("8", color));
  EXPECT_EQ(color, vt::CUSTOM);
  // A name is no number: it reads as 0.
  EXPECT_TRUE(vt::readColor("Red", color));
  EXPECT_EQ(color, vt::BLACK);
  color = vt::WHITE;
  EXPECT_FALSE(vt::readColor("9", color));
  EXPECT_FALSE(vt::readColor("-1", color));
  EXPECT_EQ(color, vt::WHITE);
}
