#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Language/InterfaceLanguage.h"
#include "Services/Settings.h"
#include "Simulated/SimulatedDesktop.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

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
    const Value none[]{Value::Array{},
                       Value::Array{"de", "it"},
                       Value::Array{"IT"},
                       Value::Array{"i"},
                       Value::Array{1, "it"},
                       Value::Array{"it", 1},
                       "it",
                       true,
                       Value::Dictionary{{"it", "it"}}};
    for (const Value& value : none)
        EXPECT_EQ(current(value), AppLanguage::system);
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

/// A folder for a program's settings.
class ProgramLanguage : public testing::Test {
protected:
    ProgramLanguage() {
        std::string name = "/tmp/velmor-language-XXXXXX";
        folder = mkdtemp(name.data());
        fs::create_directory(folder / "velmorquit");
    }
    ~ProgramLanguage() override { fs::remove_all(folder); }

    void write(const char* name, const std::string& text) const {
        std::ofstream(folder / "velmorquit" / name) << text;
    }

    /// "Uso:" or "Usage:", by what the environment says beside a home of its own.
    [[nodiscard]] std::string firstWord(const std::vector<std::string>& variables) const {
        std::vector<std::string> command{"env"};
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
            command.push_back("--unset=" + std::string(name));
        command.push_back("XDG_CONFIG_HOME=" + folder.string());
        command.insert(command.end(), variables.begin(), variables.end());
        command.insert(command.end(), {VELMORCTL, "help"});
        Child child(command);
        EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }, 60000));
        return child.output().substr(0, child.output().find(' '));
    }

    fs::path folder;
};

TEST_F(ProgramLanguage, FollowsTheEnvironment) {
    EXPECT_EQ(firstWord({}), "Uso:");
    EXPECT_EQ(firstWord({"LANG=en_US.UTF-8"}), "Usage:");
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8", "LC_MESSAGES=en_GB.UTF-8"}), "Usage:");
    EXPECT_EQ(firstWord({"LC_MESSAGES=en_GB.UTF-8", "LC_ALL=it_IT.UTF-8"}), "Uso:");
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8", "LANGUAGE=fr:en_US:it"}), "Usage:");
    EXPECT_EQ(firstWord({"LANG=de_DE.UTF-8"}), "Usage:");
    EXPECT_EQ(firstWord({"LANG=de_DE.UTF-8", "LANGUAGE=de:it"}), "Uso:");
    for (const char* nothing : {"C", "POSIX", "C.UTF-8", ""})
        EXPECT_EQ(firstWord({"LANG=" + std::string(nothing)}), "Uso:") << nothing;
}

TEST_F(ProgramLanguage, IsForcedByThePreferencesOrTheirEarlierState) {
    const std::string english =
        PropertyList::encode(Value::Dictionary{{"AppleLanguages", Value::Array{"en-GB"}}});
    write("preferences.plist~", english);
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8"}), "Uso:");
    write("preferences.plist", "no property list");
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8"}), "Usage:");
    write("preferences.plist", PropertyList::encode(Value::Dictionary{}));
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8"}), "Uso:");
    write("preferences.plist", english);
    EXPECT_EQ(firstWord({"LANG=it_IT.UTF-8"}), "Usage:");
}

} // namespace
} // namespace velmorquit
