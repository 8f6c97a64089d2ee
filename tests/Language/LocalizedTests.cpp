#include "Language/TranslatedTexts.h"
#include "Texts/Localized.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace velmorquit {
namespace {

struct Table final : Localization {
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const override {
        const auto found = texts.find(std::string(key));
        return found == texts.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<std::string, std::string> texts;
};

class LocalizedTest : public testing::Test {
protected:
    std::string translated(const std::string& translation) {
        table.texts["%@: %lld"] = translation;
        return localized("%@: %lld", "Note", 3);
    }

    Table table;
    LocalizationScope scope{table};
};

TEST_F(LocalizedTest, ATextWithoutATranslationIsItsKey) {
    EXPECT_EQ(localized("Chiudi %lld app al 100 %%", 5), "Chiudi 5 app al 100 %");
    const std::string name = "%@ %lld 50%";
    EXPECT_EQ(localized("«%@» in %@", name, std::string_view("a")), "«%@ %lld 50%» in a");
    EXPECT_EQ(localized("%lld", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST_F(LocalizedTest, ATranslationMayReorderRepeatAndLeaveOut) {
    EXPECT_EQ(translated("%@ has %lld"), "Note has 3");
    EXPECT_EQ(translated("%2$lld of %1$@ (%1$@)"), "3 of Note (Note)");
    EXPECT_EQ(translated("only %@"), "only Note");
    EXPECT_EQ(translated("nothing %%@"), "nothing %@");
}

TEST_F(LocalizedTest, ATranslationThatAsksForWhatIsNotThereIsNotUsed) {
    for (const char* wrong : {"%lld %@", "%@ %lld %@", "%3$@", "%99999999999999999999$@ %3$lld",
                              "%1$lld", "%2$@", "%@ %lld %lld"})
        EXPECT_NE(translated(wrong).find("Note"), std::string::npos) << wrong;
    EXPECT_EQ(translated("%3$@"), "Note: 3");
    EXPECT_EQ(localized("%@ e %@", "uno"), "uno e %@");
    EXPECT_EQ(localized("%@", 1), "%@");
}

TEST_F(LocalizedTest, WhatOnlyLooksLikeAPlaceholderIsPlainText) {
    for (const char* plain :
         {"%", "%l", "%ll", "%1", "%1$", "%0$@", "%d %s", "a % b", "%$@", "%-1$@"})
        EXPECT_EQ(translated(plain), plain);
}

TEST_F(LocalizedTest, TheTableFromBeforeIsBackAfterAScope) {
    table.texts["Sì"] = "Yes";
    {
        Table other;
        const LocalizationScope inner(other);
        EXPECT_EQ(localized("Sì"), "Sì");
    }
    EXPECT_EQ(localized("Sì"), "Yes");
}

TEST(TranslatedTexts, EnglishIsBuiltInAndItalianIsTheKeys) {
    const TranslatedTexts english(Language::english);
    EXPECT_EQ(english.text("Chiedo a %lld app di chiudersi"), "Asking %lld apps to quit");
    EXPECT_EQ(english.text("Chiude le app, poi spegne il Mac"),
              "Quits the apps, then shuts down the computer");
    EXPECT_EQ(english.text("Questo non lo dice nessuno"), std::nullopt);
    EXPECT_EQ(english.text(""), std::nullopt);
    EXPECT_EQ(TranslatedTexts(Language::italian).text("Spegni"), std::nullopt);
}

} // namespace
} // namespace velmorquit
