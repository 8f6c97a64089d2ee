#include "Desktop/PowerStory.h"

#include <fstream>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmorquit {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Programs that no list of applications tells of, and what else may be lost in the end.
class LastStep : public PowerStory {
protected:
    /// Returns when the run has ended.
    static Outcome shutDown() {
        return control({"quit-all", "--then", "shutDown", "--yes", "--no-wait"});
    }
    /// Returns when it is known what became of shutting down.
    static Outcome shutDownAndWait() {
        return control({"quit-all", "--then", "shutDown", "--yes"});
    }

    static QJsonObject ending() { return status()["ending"].toObject(); }
    static std::string stage() { return ending()["stage"].toString().toStdString(); }
    static std::string text() { return ending()["text"].toString().toStdString(); }

    /// Waits until the end of the session waits for, names or is refused because of something of
    /// which that is said, and a while longer.
    static void expectHeldUp(const std::string& stage, const std::string& said) {
        await(stage + " with «" + said + "»",
              [&] { return LastStep::stage() == stage && text().find(said) != std::string::npos; });
        linger(3000);
        EXPECT_THAT(calls(), IsEmpty());
    }

    /// What `velmorctl anyway` says in a terminal where that is typed.
    static std::string answered(const std::string& word) {
        return run({"bash", "-c",
                    "(sleep 1; echo " + word + "; sleep 1) | script -qec '" + VELMORCTL +
                        " anyway' /dev/null"})
            .text;
    }

    static void hideFromMenus(const std::string& program) {
        const std::filesystem::path data = std::getenv("XDG_DATA_HOME");
        write(data / "applications" / (program + ".desktop"),
              "[Desktop Entry]\nType=Application\nName=Hidden\nExec=true\nNoDisplay=true\n");
    }

    /// Opens one that the program doesn't list.
    Child& openUnlisted(std::vector<std::string> manners) {
        manners.insert(manners.begin(), RUDE_CLIENT);
        Child& child = unlisted.emplace_back(manners);
        await("a window", [&] { return child.output().find("ready") != std::string::npos; });
        linger(200);
        return child;
    }

    /// One that has closed its windows as the user told it to, and lives on in the tray.
    Child& openInTray(const std::string& name) {
        Child& safe = openRude({"--class", name, "--stay", "--tray-icon"});
        focus(name);
        run({"xdotool", "key", "alt+F4"});
        await("its window's end", [&] { return safe.output().find("asked") != std::string::npos; });
        await("an empty list", [] { return names("applications").empty(); });
        return safe;
    }

    std::list<Child> unlisted;
};

TEST_F(LastStep, WindowsThatNoListShowsAreAskedWaitedForAndNamed) {
    hideFromMenus("hidden");
    startAll();
    Child& panel = openUnlisted({"--class", "Plank", "--dock", "--windows", "2", "--ignore"});
    openUnlisted({"--class", "Hidden", "--ignore"});
    openUnlisted({"--class", "Far", "--machine", "elsewhere", "--ignore"});
    EXPECT_THAT(names("applications"), IsEmpty());
    shutDown();
    expectHeldUp("waiting", "Plank");
    EXPECT_THAT(text(), HasSubstr("Hidden"));
    EXPECT_THAT(text(), HasSubstr("Far (elsewhere)"));
    for (Child& child : unlisted)
        EXPECT_THAT(child.output(), HasSubstr("asked"));
    panel.send(SIGKILL);
    unlisted.back().send(SIGKILL);
    await("the last of them", [] { return text().find("Plank") == std::string::npos; });
    EXPECT_THAT(calls(), IsEmpty());
    unlisted.clear();
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("login1 PowerOff"));
}

TEST_F(LastStep, WhatWorksOnWithoutWindowsIsWaitedFor) {
    startAll();
    Child& copying = openRude({"--class", "Copy", "--stay", "--works", "14"});
    Child& service =
        openRude({"--class", "Service", "--stay", "--works", "14", "--gapplication-service"});
    EXPECT_EQ(control({"exclude", "Copy"}).status, 0);
    shutDown();
    expectHeldUp("waiting", "Copy (sta ancora lavorando)");
    EXPECT_THAT(text(), HasSubstr("Service (sta ancora lavorando)"));
    awaitPowerCall();
    EXPECT_THAT(copying.output(), HasSubstr("worked"));
    EXPECT_THAT(service.output(), HasSubstr("worked"));
}

TEST_F(LastStep, WhatSitsInTheTrayIsNamedAndTheUserMayCancel) {
    startAll();
    openInTray("Safe");
    Child quitAll({VELMORCTL, "quit-all", "--then", "shutDown", "--yes"});
    expectHeldUp("naming", "Nell'area di notifica: Safe.");
    const Outcome leave = control({"leave"});
    EXPECT_EQ(leave.status, 1);
    EXPECT_THAT(leave.text, HasSubstr("velmorctl cancel"));
    EXPECT_EQ(control({"cancel"}).status, 0);
    const Outcome cancelled = outcomeOf(quitAll);
    EXPECT_EQ(cancelled.status, 1);
    EXPECT_THAT(cancelled.text, HasSubstr("Non c'è niente da chiudere."));
    EXPECT_THAT(cancelled.text, HasSubstr("Annullato: non spengo"));
    linger(10000);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(stage(), "");
    const Outcome answer = shutDownAndWait();
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Nell'area di notifica: Safe."));
    EXPECT_THAT(answer.text, EndsWith("Spengo il computer\n"));
    awaitPowerCall();
}

/// A socket that takes what comes, as a compositor's does.
class Listener {
public:
    explicit Listener(const std::filesystem::path& path)
        : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        EXPECT_EQ(::listen(descriptor_, 1), 0);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { ::close(descriptor_); }

private:
    int descriptor_;
};

TEST_F(LastStep, ASessionOfWaylandIsNeverEndedUnseen) {
    const Listener compositor(std::filesystem::path(std::getenv("XDG_RUNTIME_DIR")) / "wayland-0");
    startAll();
    Child& note = openRude({"--class", "Note"});
    EXPECT_THAT(status()["limits"].toString().toStdString(), HasSubstr("non potrò spegnere"));
    const Outcome answer = shutDownAndWait();
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.text, HasSubstr("nessun programma può chiederti conferma"));
    expectHeldUp("refused", "nessun programma può chiederti conferma");
    EXPECT_FALSE(note.isRunning()) << "that much was asked for by itself";
}

TEST_F(LastStep, WhereNobodyListsWindowsNothingIsEnded) {
    startAll();
    Child& editor = openRude({"--class", "Editor", "--ignore"});
    EXPECT_EQ(control({"exclude", "Editor"}).status, 0);
    run({"pkill", "-KILL", "openbox"});
    await("the window manager's end", [] { return !status()["limits"].toString().isEmpty(); });
    Child& late = openUnlisted({"--class", "Late", "--ignore"});
    shutDown();
    expectHeldUp("refused", "Non vedo tutte le finestre di questa sessione");
    EXPECT_TRUE(editor.isRunning() && late.isRunning());
}

TEST_F(LastStep, OtherPeopleAndWhoeverSaysNoKeepTheComputerOn) {
    write(account(), R"({"inhibitors": [["shutdown", "apt", "Aggiornamento", "block", 0, 1]],
                         "sessions": [{"id": "7", "uid": 4711, "user": "anna", "seat": "",
                                       "class": "user", "type": "tty", "state": "active"}]})");
    startAll();
    shutDown();
    expectHeldUp("refused", "anna è ancora al lavoro su questo computer.");
    write(account(), R"({"inhibitors": [["shutdown", "apt", "Aggiornamento", "block", 0, 1]]})");
    openRude();
    shutDown();
    expectHeldUp("waiting", "apt (Aggiornamento)");
    write(account(), "{}");
    awaitPowerCall();
}

TEST_F(LastStep, OnlyWhoeverSitsAtATerminalMayPassOverWhatStays) {
    startAll();
    openRude({"--class", "Editor", "--ignore"});
    EXPECT_EQ(control({"exclude", "Editor"}).status, 0);
    shutDown();
    expectHeldUp("waiting", "Editor");
    const Outcome blind = control({"anyway"});
    EXPECT_EQ(blind.status, 2);
    EXPECT_THAT(blind.text, HasSubstr("senza un terminale"));
    EXPECT_THAT(answered("n"), HasSubstr("annullato: non faccio niente."));
    linger(2000);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(answered("s"), HasSubstr("Editor è rimasta aperta. Quello che non è salvato va "
                                         "perso. Spegnere comunque? [s/N]"));
    awaitPowerCall();
    EXPECT_THAT(calls(), Contains("login1 PowerOff"));
}

} // namespace
} // namespace velmorquit
