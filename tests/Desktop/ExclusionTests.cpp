#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using Exclusions = DesktopStory;

TEST_F(Exclusions, AreNeverAskedWhoeverHasStoredThemUntilTheyAreIncludedAgain) {
    startProgram();
    EXPECT_THAT(names("excluded"), Contains("thunar")) << "where the user has said nothing";
    Child& kept = openRude({"--class", "Carta e Penna"});
    Child& other = openRude({"--class", "Carta"});
    for (const char* verb : {"exclude", "include"})
        EXPECT_THAT(control({verb, "Penna"}),
                    ends(1, "velmorctl: Nessuna app aperta si chiama «Penna».\n"));
    EXPECT_THAT(contents(preferencesFile()), Not(HasSubstr("excluded")));
    EXPECT_EQ(control({"exclude", "carta", "e", "penna"}).status, 0);
    EXPECT_THAT(control({"quit-all"}), ends(0, HasSubstr("Finito: 1 app chiusa")));
    EXPECT_FALSE(other.isRunning());

    open({"mousepad"});
    EXPECT_EQ(control({"exclude", "mousepad"}).status, 0);
    EXPECT_EQ(control({"include", "thunar"}).status, 0);
    const Words before = names("excluded");
    EXPECT_THAT(before, AllOf(Contains("Carta e Penna"), Contains("org.xfce.mousepad"),
                              Not(Contains("thunar"))));
    killProgram();
    startProgram();
    EXPECT_EQ(names("excluded"), before);
    EXPECT_THAT(control({"quit-all"}), ends(0, "Non c'è niente da chiudere.\n"));

    prefer({{"excludedApps", Value::Array{"Carta e Penna", "Elsewhere"}}});
    await("another program's edit",
          [] { return names("excluded") == Words{"Carta e Penna", "Elsewhere"}; });
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_TRUE(kept.isRunning());
    EXPECT_THAT(kept.output(), Not(HasSubstr("asked")));
    EXPECT_EQ(control({"include", "Carta e Penna"}).status, 0);
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_FALSE(kept.isRunning());
}

} // namespace
} // namespace velmorquit
