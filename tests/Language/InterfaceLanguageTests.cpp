#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Language/InterfaceLanguage.h"
#include "Services/Settings.h"
#include "Simulated/SimulatedDesktop.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

TEST(InterfaceLanguage, IsTheForcedOneElseTheFirstOfTheUsersThatIsSpoken) {
    EXPECT_EQ(interfaceLanguage(Language::english, {"it-IT"}), Language::english);
    EXPECT_EQ(interfaceLanguage(std::nullopt, {"de-DE", "en_GB", "it"}), Language::english);
    EXPECT_EQ(interfaceLanguage(std::nullopt, {"eng-x", "it-Latn-CH", "en"}), Language::italian);
    EXPECT_EQ(interfaceLanguage(std::nullopt, {"de", "it"}), Language::italian);
    for (const QStringList& unspoken : {QStringList{"C", "fr-FR"}, {"iteso", "ento"}})
        EXPECT_EQ(interfaceLanguage(std::nullopt, unspoken), Language::english);
    for (const QStringList& unknown : {QStringList{}, {"C"}, {""}, {"POSIX"}, {"und"}})
        EXPECT_EQ(interfaceLanguage(std::nullopt, unknown), Language::italian);
}

TEST(InterfaceLanguage, IsForcedByTheFirstTwoLettersOfTheFirstText) {
    SimulatedDesktop desktop;
    const auto current = [&](Value value) {
        desktop.preferences.set("AppleLanguages", std::move(value));
        return Settings(desktop.loop, desktop.preferences).language.get();
    };
    EXPECT_EQ(current(Value::Array{"en-GB", "it"}), AppLanguage::english);
    EXPECT_EQ(current(Value::Array{"it_CH"}), AppLanguage::italian);
    for (const Value& none :
         {Value(Value::Array{}), Value(Value::Array{"de", "it"}), Value(Value::Array{"IT"}),
          Value(Value::Array{"i"}), Value(Value::Array{1, "it"}), Value(Value::Array{"it", 1}),
          Value("it"), Value(true), Value(Value::Dictionary{{"it", "it"}})})
        EXPECT_EQ(current(none), AppLanguage::system);
    for (const AppLanguage language : allAppLanguages)
        EXPECT_EQ(appLanguageFromRaw(rawValue(language)), language);
    EXPECT_EQ(appLanguageFromRaw("EN"), std::nullopt);
}

TEST(InterfaceLanguage, ItsFiguresAreThoseOfWhereTheUserLives) {
    EXPECT_EQ(formatLocale(Language::italian, QLocale("it_CH")), QLocale("it_CH"));
    EXPECT_EQ(formatLocale(Language::english, QLocale("it_IT")).decimalPoint(), ".");
    EXPECT_EQ(formatLocale(Language::english, QLocale("de_DE")).language(), QLocale::English);
    EXPECT_EQ(formatLocale(Language::english, QLocale("de_DE")).territory(), QLocale::Germany);
    EXPECT_EQ(formatLocale(Language::italian, QLocale::c()).decimalPoint(), ",");
}

/// "Uso:" or "Usage:", by what the environment says beside a home of its own.
std::string firstWord(const TemporaryFolder& home, const std::vector<std::string>& variables) {
    std::vector<std::string> command{"env", "-u", "LANGUAGE", "-u", "LC_ALL", "-u", "LC_MESSAGES"};
    command.insert(command.end(), {"-u", "LANG", "XDG_CONFIG_HOME=" + home.path().string()});
    command.insert(command.end(), variables.begin(), variables.end());
    command.insert(command.end(), {VELMORCTL, "help"});
    Child child(command);
    EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }, 60000));
    return child.output().substr(0, child.output().find(' '));
}

TEST(ProgramLanguage, FollowsTheEnvironmentUnlessThePreferencesOrTheirEarlierStateForceIt) {
    const TemporaryFolder home;
    using Variables = std::vector<std::string>;
    for (const auto& [variables, word] : std::vector<std::pair<Variables, const char*>>{
             {{}, "Uso:"},
             {{"LANG=it_IT.UTF-8", "LC_MESSAGES=en_GB.UTF-8"}, "Usage:"},
             {{"LC_MESSAGES=en_GB.UTF-8", "LC_ALL=it_IT.UTF-8"}, "Uso:"},
             {{"LANG=it_IT.UTF-8", "LANGUAGE=fr:en_US:it"}, "Usage:"},
             {{"LANG=de_DE.UTF-8"}, "Usage:"},
             {{"LANG=de_DE.UTF-8", "LANGUAGE=de:it"}, "Uso:"},
             {{"LANG=C"}, "Uso:"},
             {{"LANG=C.UTF-8"}, "Uso:"},
             {{"LANG="}, "Uso:"}})
        EXPECT_EQ(firstWord(home, variables), word) << testing::PrintToString(variables);

    const std::string english =
        PropertyList::encode(Value::Dictionary{{"AppleLanguages", Value::Array{"en-GB"}}});
    const auto write = [&](const char* name, const std::string& text) {
        std::ofstream(home.path() / "velmorquit" / name) << text;
        return firstWord(home, {"LANG=it_IT.UTF-8"});
    };
    std::filesystem::create_directory(home.path() / "velmorquit");
    EXPECT_EQ(write("preferences.plist~", english), "Uso:");
    EXPECT_EQ(write("preferences.plist", "no property list"), "Usage:");
    EXPECT_EQ(write("preferences.plist", PropertyList::encode(Value::Dictionary{})), "Uso:");
    EXPECT_EQ(write("preferences.plist", english), "Usage:");
}

} // namespace
} // namespace velmorquit
