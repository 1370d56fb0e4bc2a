#include <gtest/gtest.h>

#include "core/Utility.h"

TEST(ValueReaders, NumbersAsAtoiReadsThemWithoutItsUndefinedCases) {
  int number = 42;
  EXPECT_TRUE(vt::readInt("12ab", number));
  EXPECT_EQ(number, 12);
  EXPECT_TRUE(vt::readInt("-0.5", number));
  EXPECT_EQ(number, 0);
  EXPECT_TRUE(vt::readInt("2147483647", number));
  EXPECT_EQ(number, 2147483647);
  number = 42;
  for (const char* text : {"", "abc", "-", "2147483648", "-2147483649", "99999999999999999999"}) {
    EXPECT_FALSE(vt::readInt(text, number)) << text;
  }
  EXPECT_EQ(number, 42);

  float value = 1.5f;
  EXPECT_TRUE(vt::readFloat("3.25x", value));
  EXPECT_EQ(value, 3.25f);
  EXPECT_TRUE(vt::readFloat("-1e38", value));
  EXPECT_EQ(value, -1e38f);
  value = 1.5f;
  for (const char* text : {"", "x", "1e39", "-1e999", "inf", "nan", "-NAN"}) {
    EXPECT_FALSE(vt::readFloat(text, value)) << text;
  }
  EXPECT_EQ(value, 1.5f);
}

TEST(ValueReaders, BooleansAndColours) {
  bool flag = true;
  EXPECT_TRUE(vt::readBool("false", flag));
  EXPECT_FALSE(flag);
  EXPECT_FALSE(vt::readBool("True", flag));
  EXPECT_FALSE(vt::readBool("1", flag));
  EXPECT_FALSE(flag);

  vt::Color color = vt::WHITE;
  EXPECT_TRUE(vt::readColor("3", color));
  EXPECT_EQ(color, vt::YELLOW);
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

TEST(ValueReaders, GroupSelection) {
  EXPECT_TRUE(vt::groupSelected("ALL", "ID,", false));
  EXPECT_TRUE(vt::groupSelected("", "ID,", true));
  EXPECT_FALSE(vt::groupSelected("", "ID,", false));
  EXPECT_TRUE(vt::groupSelected("TYPE,ID,", "ID,", false));
  EXPECT_FALSE(vt::groupSelected("TYPE,ID,", "BOX,", true));
  EXPECT_FALSE(vt::groupSelected("TYPE,ID", "ID,", true));
  // A name that ends another one is found inside it.
  EXPECT_TRUE(vt::groupSelected("FOLLOW_PATH,", "PATH,", false));
}
