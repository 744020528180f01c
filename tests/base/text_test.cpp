#include "base/text.h"

#include <gtest/gtest.h>

namespace text {

TEST(Text, EveryByteSurvivesTheWayToUtf16AndUtf8AndBack) {
    for (int b = 0; b < 256; ++b) {
        const std::string byte(1, static_cast<char>(b));
        EXPECT_EQ(from_utf16(to_utf16(byte)), byte) << b;
        EXPECT_EQ(from_utf8(to_utf8(byte)), byte) << b;
        EXPECT_EQ(upper(lower(upper(byte))), upper(byte)) << b;
    }
}

TEST(Text, WhatTheCodePageCannotSpellIsRefused) {
    EXPECT_EQ(from_utf16(u"\u0178"), "\x9F");
    EXPECT_EQ(from_utf16(u"\u009F"), std::nullopt) << "9F is taken by another letter";
    for (const char* foreign : {"\u041F", "\xC3", "\x80", "\xC0\x80", "\xED\xA0\x80", "\xF8\x88\x80\x80\x80"})
        EXPECT_EQ(from_utf8(foreign), std::nullopt);
    EXPECT_EQ(utf8_from_utf16(*utf16_from_utf8("a\U0001F512z")), "a\U0001F512z");
}

TEST(Text, CaseFollowsTheCodePage) {
    EXPECT_EQ(lower(std::string_view(U"ÄÖÜŠŒŽŸ×"_ansi)), U"äöüšœžÿ×"_ansi);
    EXPECT_EQ(upper(std::string_view(U"äöüšœžÿ÷ß"_ansi)), U"ÄÖÜŠŒŽŸ÷ß"_ansi);
    EXPECT_FALSE(equal_ignoring_case("bob", std::string_view("bob\0", 4)));
}

}  // namespace text
