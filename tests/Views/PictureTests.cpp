#include "Views/PanelStory.h"
#include <QLayout>
namespace velmorquit {
namespace {
class Pic : public PanelStory {
public:
    void shot(const char* n) {
        settle();
        frame->grab().save(QString("/tmp/pic-%1.png").arg(n));
    }
    void fill() {
        const char* names[] = {"Navigo",    "Officina", "Tavolozza", "Melodia",
                               "Contabile", "Archivio", "Postale",   "Appunti"};
        std::uint64_t m[] = {2191_MiB, 1649_MiB, 900_MiB, 512_MiB,
                             412_MiB,  301_MiB,  238_MiB, 100_MiB};
        for (int i = 0; i < 8; ++i)
            desktop.open(names[i], m[i]);
        desktop.kernel.total = 16384_MiB;
        desktop.kernel.brand = "CPU a 8 core";
        desktop.kernel.model = "Portatile da 14";
    }
};
TEST_F(Pic, idle) {
    fill();
    start();
    controller->toggleExclusion(controller->apps.get()[3]);
    controller->toggleExclusion(controller->apps.get()[5]);
    advance(1s);
    shot("idle");
}
TEST_F(Pic, quitting) {
    fill();
    desktop.open("Testardo", 50_MiB).ignoresAsking();
    start();
    controller->chooseAfterQuit(PowerAction::shutDown);
    controller->quitAll(PowerAction::shutDown);
    advance(100ms);
    shot("quitting");
    advance(7s);
    shot("waiting");
}
TEST_F(Pic, done) {
    fill();
    start();
    controller->quitAll(PowerAction::none);
    advance(2s);
    shot("done");
    advance(10s);
    shot("empty");
}
TEST_F(Pic, low) {
    fill();
    height = 500;
    start();
    shot("low");
}
TEST_F(Pic, contrast) {
    fill();
    AppTheme::setLook({true, false, 1});
    start();
    controller->toggleExclusion(controller->apps.get()[3]);
    shot("contrast");
}
TEST_F(Pic, large) {
    fill();
    AppTheme::setLook({false, false, 1.4});
    start();
    controller->toggleExclusion(controller->apps.get()[3]);
    shot("large");
}
TEST_F(Pic, cards) {
    fill();
    start();
    controller->chooseAfterQuit(PowerAction::shutDown);
    settle();
    click("showScheduler");
    shot("scheduler");
    click("preset60");
    shot("scheduled");
    advance(59min + 20s);
    shot("urgent");
    advance(41s);
    shot("confirm");
    controller->cancelSchedule();
    controller->scheduleNote =
        std::string("La chiusura programmata delle 23:00 non è partita: il Mac era in stop.");
    shot("note");
    fprintf(stderr, "H %d %d\n", frame->height(), frame->panel().heightFor(230));
    auto* n = find("NoteCard");
    fprintf(stderr, "note %d hfw %d label %d\n", n->height(), n->layout()->totalHeightForWidth(324),
            find("note")->height());
    auto* c = find("normalContent");
    fprintf(stderr, "content %d hfw %d\n", c->height(), c->layout()->totalHeightForWidth(324));
    auto* l = find("AppList");
    fprintf(stderr, "list %d %d hfw %d sz %d\n", l->height(), find("rows")->height(),
            l->layout()->totalHeightForWidth(324), l->layout()->totalSizeHint().height());
}
} // namespace
} // namespace velmorquit
