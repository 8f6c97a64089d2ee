#include "Desktop/PowerStory.h"

namespace velmorquit {
namespace {

/// Programs that no list of applications tells of, and what else may be lost in the end.
class LastStep : public PowerStory {
protected:
    static inline const Words shutDown{VELMORCTL, "quit-all", "--then", "shutDown", "--yes"};

    /// Returns when the run has ended.
    static void shutDownWithoutWaiting() {
        control({"quit-all", "--then", "shutDown", "--yes", "--no-wait"});
    }

    static std::string ending(const char* field) {
        return status()["ending"].toObject()[QLatin1String(field)].toString().toStdString();
    }
    static bool says(const std::string& text) {
        return ending("text").find(text) != std::string::npos;
    }

    /// Waits until the end of the session waits for, names or is refused because of something of
    /// which that is said, and a while longer.
    void expectHeldUp(const std::string& stage, const std::string& said) const {
        await(stage + " with «" + said + "»",
              [&] { return ending("stage") == stage && says(said); });
        linger(3000);
        EXPECT_THAT(calls(), IsEmpty());
    }

    /// The text of `velmorctl anyway` in a terminal where that is typed.
    static std::string answered(const std::string& word) {
        return run({"bash", "-c",
                    "(sleep 1; echo " + word +
                        "; sleep 1) | script -qec '" VELMORCTL " anyway' /dev/null"})
            .text;
    }

    Child& openExcluded(const Words& manners) {
        Child& child = openRude(manners);
        EXPECT_EQ(control({"exclude", manners[1]}).status, 0);
        return child;
    }
};

TEST_F(LastStep, WhatNoListShowsAndWhatWorksOnIsWaitedForAndNamed) {
    write(folder("XDG_DATA_HOME") / "applications" / "hidden.desktop",
          "[Desktop Entry]\nType=Application\nName=Hidden\nExec=true\nNoDisplay=true\n");
    startAll();
    Child& panel = openUnlisted({"--class", "Plank", "--dock", "--windows", "2", "--ignore"});
    Child& hidden = openUnlisted({"--class", "Hidden", "--ignore"});
    Child& far = openUnlisted({"--class", "Far", "--machine", "elsewhere", "--ignore"});
    EXPECT_THAT(names("applications"), IsEmpty());
    Child& copying = openExcluded({"--class", "Copy", "--stay", "--works", "14"});
    Child& service =
        openRude({"--class", "Service", "--stay", "--works", "14", "--gapplication-service"});
    shutDownWithoutWaiting();
    for (const char* named : {"Plank", "Hidden", "Far (elsewhere)", "Copy (sta ancora lavorando)",
                              "Service (sta ancora lavorando)"})
        await(named, [&] { return says(named); });
    expectHeldUp("waiting", "Plank");
    for (Child* child : {&panel, &hidden, &far}) {
        EXPECT_THAT(child->output(), HasSubstr("asked"));
        child->send(SIGKILL);
    }
    await("the last window", [] { return !says("Plank"); });
    expectHeldUp("waiting", "Copy");
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("login1 PowerOff"));
    EXPECT_THAT(copying.output(), HasSubstr("worked"));
    EXPECT_THAT(service.output(), HasSubstr("worked"));
}

TEST_F(LastStep, WhatSitsInTheTrayIsNamedAndTheUserMayCancel) {
    startAll();
    // It has closed its windows as the user told it to, and lives on in the tray.
    Child& safe = openRude({"--class", "Safe", "--stay", "--tray-icon"});
    focus("Safe");
    press({"alt+F4"});
    awaitText(safe, "asked");
    await("an empty list", [] { return names("applications").empty(); });
    Child quitAll(shutDown);
    expectHeldUp("naming", "Nell'area di notifica: Safe.");
    EXPECT_THAT(control({"leave"}), ends(1, HasSubstr("velmorctl cancel")));
    EXPECT_EQ(control({"cancel"}).status, 0);
    EXPECT_THAT(outcomeOf(quitAll), ends(1, AllOf(HasSubstr("Non c'è niente da chiudere."),
                                                  HasSubstr("Annullato: non spengo"))));
    linger(10000);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(ending("stage"), "");
    EXPECT_THAT(run(shutDown), ends(0, AllOf(HasSubstr("Nell'area di notifica: Safe."),
                                             EndsWith("Spengo il computer\n"))));
    awaitPowerCall();
}

TEST_F(LastStep, WhereNotEveryWindowIsSeenNothingIsEnded) {
    Child compositor({"python3", "-c",
                      "import os, socket, time; s = socket.socket(socket.AF_UNIX);"
                      "s.bind(os.environ['XDG_RUNTIME_DIR'] + '/wayland-0'); s.listen(1);"
                      "print('ready', flush=True); time.sleep(1000)"});
    awaitText(compositor, "ready");
    startAll();
    EXPECT_THAT(status()["limits"].toString().toStdString(), HasSubstr("non potrò spegnere"));
    Child& note = openRude({"--class", "Note"});
    EXPECT_THAT(run(shutDown), ends(1, HasSubstr("nessun programma può chiederti conferma")));
    expectHeldUp("refused", "nessun programma può chiederti conferma");
    EXPECT_FALSE(note.isRunning()) << "that much was asked for by itself";

    compositor.send(SIGKILL);
    std::filesystem::remove(folder("XDG_RUNTIME_DIR") / "wayland-0");
    killProgram();
    startProgram();
    Child& editor = openExcluded({"--class", "Editor", "--ignore"});
    run({"pkill", "-KILL", "openbox"});
    await("the window manager's end", [] { return !status()["limits"].toString().isEmpty(); });
    Child& late = openUnlisted({"--class", "Late", "--ignore"});
    shutDownWithoutWaiting();
    expectHeldUp("refused", "Non vedo tutte le finestre di questa sessione");
    EXPECT_TRUE(editor.isRunning() && late.isRunning());
}

TEST_F(LastStep, OthersKeepTheComputerOnAndOnlyWhoSitsAtATerminalPassesOverWhatStays) {
    write(account, R"({"inhibitors": [["shutdown", "apt", "Aggiornamento", "block", 0, 1]],
                       "sessions": [{"id": "7", "uid": 4711, "user": "anna", "seat": "",
                                     "class": "user", "type": "tty", "state": "active"}]})");
    startAll();
    openExcluded({"--class", "Editor", "--ignore"});
    shutDownWithoutWaiting();
    expectHeldUp("refused", "anna è ancora al lavoro su questo computer.");
    write(account, R"({"inhibitors": [["shutdown", "apt", "Aggiornamento", "block", 0, 1]]})");
    shutDownWithoutWaiting();
    expectHeldUp("waiting", "apt (Aggiornamento)");
    write(account, "{}");
    await("an end of the update", [] { return !says("apt"); });
    expectHeldUp("waiting", "Editor");
    EXPECT_THAT(control({"anyway"}), ends(2, HasSubstr("senza un terminale")));
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
