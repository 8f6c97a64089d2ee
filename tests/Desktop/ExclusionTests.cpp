#include "Desktop/DesktopStory.h"

#include <QJsonArray>

#include <filesystem>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Exclusions : public DesktopStory {
protected:
    static std::vector<std::string> excluded() {
        std::vector<std::string> keys;
        for (const auto& key : status()["excluded"].toArray())
            keys.push_back(key.toString().toStdString());
        return keys;
    }

    /// The files beside the preferences, and these themselves.
    static std::vector<fs::path> files() {
        const fs::path folder = preferencesFile().parent_path();
        if (!fs::exists(folder))
            return {};
        return {fs::directory_iterator(folder), {}};
    }
};

TEST_F(Exclusions, AreNeverAskedUntilTheyAreIncludedAgain) {
    startProgram();
    Child& kept = openRude({"--class", "Carta e Penna"});
    Child& other = openRude({"--class", "Carta"});
    EXPECT_EQ(control({"exclude", "carta", "e", "penna"}).status, 0);

    const Outcome first = control({"quit-all"});
    EXPECT_EQ(first.status, 0) << first.text;
    EXPECT_THAT(first.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_FALSE(other.isRunning());
    EXPECT_TRUE(kept.isRunning());
    EXPECT_THAT(kept.output(), Not(HasSubstr("asked")));

    EXPECT_EQ(control({"include", "Carta e Penna"}).status, 0);
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_FALSE(kept.isRunning());
}

TEST_F(Exclusions, SurviveTheProgram) {
    startProgram();
    Child& kept = openRude({"--class", "Carta e Penna"});
    open({"mousepad"});
    EXPECT_EQ(control({"exclude", "Carta e Penna"}).status, 0);
    EXPECT_EQ(control({"exclude", "mousepad"}).status, 0);
    EXPECT_EQ(control({"include", "thunar"}).status, 0);
    const auto before = excluded();
    EXPECT_THAT(before, Contains("Carta e Penna"));
    EXPECT_THAT(before, Contains("org.xfce.mousepad"));
    EXPECT_THAT(before, Not(Contains("thunar")));

    killProgram();
    startProgram();
    EXPECT_EQ(excluded(), before);
    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.text, "Non c'è niente da chiudere.\n");
    EXPECT_THAT(kept.output(), Not(HasSubstr("asked")));
}

TEST_F(Exclusions, ThatAnotherProgramStoresHoldAtOnceAndAreKept) {
    prefer({{"excludedApps", Value::Array{"Elsewhere"}}});
    startProgram();
    Child& letter = openRude({"--class", "Letter"});
    openRude({"--class", "Mail"});
    prefer({{"excludedApps", Value::Array{"Elsewhere", "Letter"}}});
    const std::vector<std::string> edited{"Elsewhere", "Letter"};
    await("the edit", [&] { return excluded() == edited; });
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_THAT(letter.output(), Not(HasSubstr("asked")));
    prefer({{"excludedApps", Value::Array{"Letter", "New"}}});
    openRude({"--class", "Mail"});
    EXPECT_EQ(control({"exclude", "Mail"}).status, 0);
    EXPECT_THAT(excluded(), ElementsAre("Letter", "Mail", "New"));
}

TEST_F(Exclusions, OfAnUnknownNameAreRefused) {
    startProgram();
    openRude({"--class", "Carta"});
    const auto before = excluded();
    for (const char* verb : {"exclude", "include"}) {
        const Outcome answer = control({verb, "Carta e Penna"});
        EXPECT_EQ(answer.status, 1);
        EXPECT_EQ(answer.text, "velmorctl: Nessuna app aperta si chiama «Carta e Penna».\n");
    }
    EXPECT_EQ(excluded(), before);
    EXPECT_THAT(contents(preferencesFile()), Not(HasSubstr("excluded")));
}

TEST_F(Exclusions, OfTheFirstStartAreNotWritten) {
    startProgram();
    EXPECT_THAT(excluded(), Contains("thunar"));
    openRude();
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_THAT(contents(preferencesFile()), Not(HasSubstr("excluded")));
}

TEST_F(Exclusions, StartAnewFromADamagedFileWhichIsKept) {
    const std::string damaged("<plist><dict><key>excludedApps</key>\0\xff\xfe", 40);
    write(preferencesFile(), damaged);
    startProgram();
    EXPECT_THAT(program->output(), StartsWith("Velmor Quit: "));
    EXPECT_THAT(excluded(), Contains("thunar"));
    openRude();
    EXPECT_EQ(control({"exclude", "Rude"}).status, 0);

    std::vector<fs::path> kept;
    for (const fs::path& file : files()) {
        if (contents(file) == damaged)
            kept.push_back(file);
    }
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_NE(kept.front(), preferencesFile());

    killProgram();
    startProgram();
    EXPECT_THAT(excluded(), Contains("Rude"));
    EXPECT_EQ(contents(kept.front()), damaged);
}

} // namespace
} // namespace velmorquit
