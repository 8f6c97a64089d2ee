#include "Texts/Shown.h"

#include <gtest/gtest.h>

#include <vector>

namespace velmorquit {
namespace {

struct Case {
    std::string written;
    std::string shown;
};

TEST(Shown, IsOneLineWithoutWhatHidesOrIsObeyed) {
    using namespace std::string_literals;
    const std::vector<Case> cases{
        {"R&D <b>", "R&D <b>"},
        {" a\r\n\t b\0c\u2028d\u00a0 "s, "a b c d"},
        {"\x1b]0;x\a\x1b[31mNote\x7f\u009b1m", "]0;x [31mNote 1m"},
        {"photo\u202egpj.exe\u202c \u2066x\u2069", "photogpj.exe x"},
        {"\ufefffire\u200b\u200dfox\u00ad\u2060", "firefox"},
        {"a\U000e0041\U000e0101b", "a\U000e0101b"},
        {"\u200b\u3164 \u202e\n", ""},
        // Bytes that are no UTF-8: begun and broken off, too long, a half of a pair, no character.
        {"Caf\xe9 \xe2\x82", "Caf\ufffd \ufffd"},
        {"\xc0\x80\xf5/\xed\xa0\x80\xef\xbf\xbf", "\ufffd\ufffd\ufffd/\ufffd\ufffd"},
        // What other scripts and emoji are written with.
        {"می\u200cخواهم שָׁלוֹם e\u0301", "می\u200cخواهم שָׁלוֹם e\u0301"},
        {"👩🏽\u200d💻❤\ufe0f1\ufe0f\u20e3🇮🇹", "👩🏽\u200d💻❤\ufe0f1\ufe0f\u20e3🇮🇹"},
        {"❤\ufe0f\ufe0e\ufe0f \u0301x\u200c\u200d ", "❤\ufe0f x"},
        {"Z\u0300\u0301\u0302\u0303\u0304\u0305\u0306algo", "Z\u0300\u0301\u0302\u0303algo"}};
    for (const Case& one : cases)
        EXPECT_EQ(shownName(one.written), one.shown);
}

TEST(Shown, EndsBetweenCharactersAndNeverTooLate) {
    EXPECT_EQ(shownText("abc de", 6), "abc de");
    EXPECT_EQ(shownText("abc def", 6), "abc d…");
    EXPECT_EQ(shownText("abc def", 5), "abc…");
    EXPECT_EQ(shownText("e\u0301e\u0301e\u0301\n", 3), "e\u0301e\u0301e\u0301");
    EXPECT_EQ(shownText("e\u0301e\u0301e\u0301\u200de", 3), "e\u0301e\u0301…");
    std::string zalgo;
    for (int time = 0; time < 100'000; ++time)
        zalgo += "é\u0301\ufe0f\u200d";
    EXPECT_LT(shownName(zalgo).size(), 2000U);
}

TEST(Shown, LinesStayLaidOutAndJsonStaysTheSame) {
    EXPECT_EQ(shownLines("a:\n  1\u00a0GB\x1b[2J\r\n\u202eb\t"), "a:\n  1\u00a0GB [2J \nb ");
    EXPECT_EQ(shownJson("{\"\x1b\u009b\u202e\U000e0041è\": \"\\u001b\n\"}"),
              R"({"\u001b\u009b\u202e\udb40\udc41è": "\u001b\u000a"})");
}

} // namespace
} // namespace velmorquit
