#include "Tools/velmorctl/CommandLine.h"

#include <gmock/gmock.h>

namespace velmorquit {
namespace {

using testing::HasSubstr;

TEST(ControlLine, IsRefusedWithWhatIsWrong) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
        {{}, "manca il comando"},
        {{"quit-everything"}, "comando sconosciuto: quit-everything"},
        {{"fo"}, "comando ambiguo: fo (force, forget)"},
        {{"quit-all", "--now"}, "opzione sconosciuta: --now"},
        {{"status", "--then", "restart"}, "opzione sconosciuta: --then"},
        {{"quit-all", "--then", "dance"}, "nothing, shutDown, restart, logOut"},
        {{"quit-all", "--then"}, "--then vuole"},
        {{"quit-all", "--timeout", "0"}, "--timeout vuole"},
        {{"quit-all", "--timeout", "nan"}, "--timeout vuole"},
        {{"backup", "dance"}, "skip, cancel, continue, stop"},
        {{"schedule"}, "schedule vuole"},
        {{"schedule", "--at"}, "--at vuole un valore"},
        {{"schedule", "--at", "8:00", "--minutes", "5"}, "schedule vuole"},
        {{"exclude", " "}, "exclude vuole il nome"},
        {{"quit", "A", " "}, "quit vuole il nome"}};
    for (const auto& [words, why] : wrong) {
        const auto read = parseCommandLine(words);
        const auto* said = std::get_if<std::string>(&read);
        ASSERT_TRUE(said) << why;
        EXPECT_THAT(*said, HasSubstr(why));
    }
}

TEST(ControlLine, BecomesTheArgumentsOfAVerb) {
    const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> lines{
        {{"quit-all"}, {"quitAll", "none"}},
        {{"quit-a", "--yes", "--then", "logOut"}, {"quitAll", "logOut"}},
        {{"quit", "Text Editor", "--odd"}, {"quit", "Text Editor", "--odd"}},
        {{"ask-again", "Text", "Editor"}, {"askAgain", "Text Editor"}},
        {{"include", "-x", "y "}, {"include", "-x y"}},
        {{"schedule", "--minutes", "5"}, {"schedule", "minutes", "5", "shutDown"}},
        {{"schedule", "--then", "nothing", "--at", "8:00"}, {"schedule", "at", "8:00", "none"}},
        {{"postpone"}, {"postpone", "10"}},
        {{"action", "quit-all", "then=restart"}, {"action", "quit-all", "then=restart"}}};
    for (const auto& [words, verb] : lines) {
        const auto read = parseCommandLine(words);
        const auto* line = std::get_if<CommandLine>(&read);
        ASSERT_TRUE(line) << words.front();
        std::vector<std::string> said{std::string(line->command->name)};
        said.insert(said.end(), line->arguments.begin(), line->arguments.end());
        EXPECT_EQ(said, verb);
        EXPECT_TRUE(remote::find({verb.front(), line->arguments})) << "the program takes it";
    }
}

TEST(ControlLine, IsExplainedInLinesThatATerminalHasRoomFor) {
    const std::string text = usage();
    EXPECT_TRUE(text.starts_with("Uso: velmorctl COMANDO\n\n  status [--json]      che cosa è"));
    EXPECT_THAT(text, HasSubstr("\n  schedule --minutes N|--at HH:MM [--then "
                                "nothing|shutDown|restart|logOut]\n                       "
                                "programma la chiusura"));
    for (const remote::Command& command : remote::commands())
        EXPECT_THAT(text, HasSubstr("\n  " + std::string(command.control)));
}

} // namespace
} // namespace velmorquit
