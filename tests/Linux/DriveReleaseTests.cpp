#include "Linux/UDisksVolumesTest.h"

namespace velmorquit {
namespace {

using testing::IsEmpty;

/// Volumes are taken away through the whole adapter.
class DriveReleaseTest : public UDisksVolumesTest {
protected:
    /// A card reader in the same case as the stick, with a card that is mounted.
    void addNeighbour() {
        disks.drive("Card", {{"ConnectionBus", "usb"},
                             {"Ejectable", false},
                             {"CanPowerOff", true},
                             {"SiblingId", "port 1"}});
        add("sdc", {8, 32}, "Card");
        mount("sdc", {"/mnt/card"});
    }
    /// The first partition is mounted, and all is known.
    void startWithStick() {
        mount("sdb1", {"/mnt/a"});
        startAll();
    }
    /// Keeps the question after which it is for the test to answer.
    void holdBack(const QString& call) {
        disks.onCall = [=, this](const QString& made, const QDBusMessage& message) {
            if (!held && made == call)
                held = message;
            return held.has_value();
        };
    }

    std::optional<QDBusMessage> held;
};

TEST_F(DriveReleaseTest, AllOfTheDriveIsUnmountedAndThenItIsEjected) {
    mount("sdb1", {"/mnt/a", "/mnt/elsewhere"});
    mount("sdb2", {"/mnt/a/inner"});
    disks.onCall = [](const QString&, const QDBusMessage& message) {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().value(0));
        EXPECT_EQ(options.value("auth.no_user_interaction"), QVariant(false));
        EXPECT_TRUE(message.isInteractiveAuthorizationAllowed());
        return false;
    };
    startAll();
    EXPECT_EQ(eject("/mnt/elsewhere"),
              "Unmount sdb2, Unmount sdb1, Unmount sdb1, Eject Stick: safe");
    EXPECT_TRUE(becomes({"/"}));
    EXPECT_EQ(eject("/mnt/a/inner"), ": safe") << "it went along";
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(DriveReleaseTest, NothingIsEjectedWhileOneIsBusyAndTheNextAttemptGoesOn) {
    mount("sdb2", {"/mnt/b"});
    disks.refuseTo("Unmount sdb1", "DeviceBusy");
    startWithStick();
    EXPECT_EQ(eject("/mnt/b"), "Unmount sdb2, Unmount sdb1: kept");
    EXPECT_EQ(eject("/mnt/b"), "Unmount sdb1: kept") << "the drive is still in use";
    EXPECT_TRUE(waitUntil([&] { return log.lines.size() == 2; }));
    EXPECT_THAT(log.lines[0],
                testing::AllOf(testing::StartsWith("Velmor Quit: "), testing::HasSubstr("/mnt/b"),
                               testing::HasSubstr("DeviceBusy")));
    disks.says.clear();
    EXPECT_EQ(eject("/mnt/b"), "Unmount sdb1, Eject Stick: safe");
    EXPECT_EQ(eject("/mnt/b"), ": safe");
}

TEST_F(DriveReleaseTest, WhatIsEncryptedIsLockedBetween) {
    unlock();
    mount("sdb2_open", {"/mnt/secret"});
    startAll();
    EXPECT_EQ(eject("/mnt/secret"), "Unmount sdb2_open, Lock sdb2, Eject Stick: safe");
    unlock(1);
    mount("sdb1", {"/mnt/a"});
    disks.refuseTo("Lock sdb2", "Failed");
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1, Lock sdb2: kept") << "it counts unmounted as well";
}

TEST_F(DriveReleaseTest, AnImageOnTheDriveGoesFirstAndMayGoAlone) {
    add("loop0", {7, 0}, "", {}, "/mnt/a/image.iso");
    mount("loop0", {"/iso"});
    startWithStick();
    EXPECT_FALSE(volume("/iso").holdsSystem);
    EXPECT_EQ(eject("/iso"), "Unmount loop0: safe");
    disks.of("loop0", "Loop") = {};
    mount("loop0", {"/iso"});
    disks.tellAdded("loop0");
    EXPECT_TRUE(waitUntil([&] { return paths().size() == 3; }));
    EXPECT_EQ(eject("/mnt/a"), "Unmount loop0, Delete loop0, Unmount sdb1, Eject Stick: safe");
}

TEST_F(DriveReleaseTest, AFileSystemThatReachesOverIsUnmountedBeforeEitherDriveGoes) {
    disks.drive("Other", {{"ConnectionBus", "usb"}, {"Ejectable", true}});
    add("sdc", {8, 32}, "Other");
    kernel.pool({"sdb2", "sdc"});
    mount("sdc", {"/mnt/pool"}, "0:50");
    startWithStick();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdc, Unmount sdb1, Eject Stick: safe");
}

TEST_F(DriveReleaseTest, TheDriveOfTheSystemIsNeverTouched) {
    startWithStick();
    EXPECT_FALSE(volume("/mnt/a").holdsSystem);
    kernel.swaps("/dev/sdb2 partition 1024 0 -2\n");
    EXPECT_TRUE(volume("/mnt/a").holdsSystem);
    EXPECT_EQ(eject("/mnt/a"), ": kept");
    EXPECT_EQ(eject("/"), ": kept");
    kernel.swaps("");
    kernel.mount("8:18", "/var/lib/bound", "ext4 /dev/sdb2 rw");
    EXPECT_EQ(eject("/mnt/a"), ": kept") << "UDisks2 need not know of it";
}

TEST_F(DriveReleaseTest, WhatTheKernelStillHasMountedKeepsTheDrive) {
    kernel.mount("8:17", "/mnt/bound", "ext4 /dev/sdb1 rw");
    startWithStick();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1: kept");
    EXPECT_EQ(eject("/mnt/bound"), ": kept");
    disks.onUnmounted = {};
    kernel.unmount("/mnt/bound");
    mount("sdb1", {"/mnt/a"});
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1: kept") << "unmounted, by word only";
}

TEST_F(DriveReleaseTest, PowerIsCutWhereNothingCanBeEjectedAndNoNeighbourNeedsIt) {
    disks.of("Stick", "Drive")["Ejectable"] = false;
    addNeighbour();
    startWithStick();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1: safe") << "the card would go along";
    EXPECT_EQ(eject("/mnt/card"), "Unmount sdc, PowerOff Card: safe");
    mount("sdb1", {"/mnt/a"});
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1, PowerOff Stick: safe");
}

TEST_F(DriveReleaseTest, ADriveThatCannotBeLetGoIsSafeOnlyWhenItNeedNotBe) {
    disks.refuseTo("Eject Stick", "Failed");
    startWithStick();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1, Eject Stick, PowerOff Stick: safe");
    disks.drive("Stick", {{"Ejectable", true}, {"CanPowerOff", false}});
    mount("sdb1", {"/mnt/a"});
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1, Eject Stick: kept");
    EXPECT_EQ(eject("/mnt/a"), "Eject Stick: kept") << "it is there still";
    disks.drive("Stick", {});
    EXPECT_EQ(eject("/mnt/a"), ": safe") << "unmounted is as safe as it gets";
}

TEST_F(DriveReleaseTest, UnpluggedMeanwhileItIsGone) {
    disks.onCall = [&](const QString& call, const QDBusMessage& message) {
        if (call.startsWith("Unmount")) {
            for (const char* object : {"sdb", "sdb1", "sdb2", "Stick"})
                disks.remove(object);
            kernel.unmount("/mnt/a");
        }
        disks.refuse(message, "Failed");
        return true;
    };
    startWithStick();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1: safe");
}

TEST_F(DriveReleaseTest, NotBeingAllowedIsAFailure) {
    startWithStick();
    for (const char* error :
         {"NotAuthorized", "NotAuthorizedDismissed", "Timedout", "NotMounted"}) {
        disks.refuseTo("Unmount sdb1", error);
        if (error == std::string("NotMounted")) // in which UDisks2 contradicts itself
            kernel.unmount("/mnt/a");
        EXPECT_TRUE(eject("/mnt/a").ends_with(": kept")) << error;
    }
}

TEST_F(DriveReleaseTest, OneThatHangsIsAFailureAndHoldsUpNoOther) {
    addNeighbour();
    mount("sdb1", {"/mnt/a"});
    disks.says["Unmount sdb1"] = QVariant();
    disks.start();
    startVolumes({.unmount = 1500});
    EXPECT_TRUE(waitUntil([&] { return paths().size() == 3; }));
    auto hanging = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return disks.calls.size() == 1; }));
    EXPECT_EQ(eject("/mnt/card"), "Unmount sdc: safe");
    EXPECT_FALSE(resultOf(std::move(hanging)));
    EXPECT_EQ(disks.calls, QStringList());
}

TEST_F(DriveReleaseTest, TwoAttemptsAtADriveTakeTurns) {
    mount("sdb2", {"/mnt/b"});
    holdBack("Eject Stick");
    startWithStick();
    auto first = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return disks.calls.filter("Unmount").size() == 1; }));
    auto second = beginToEject("/mnt/b");
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); }));
    linger(100);
    disks.bus.send(held->createReply());
    EXPECT_TRUE(resultOf(std::move(first)));
    EXPECT_TRUE(resultOf(std::move(second)));
    EXPECT_EQ(disks.calls.size(), 3) << disks.calls.join(", ").toStdString();
}

TEST_F(DriveReleaseTest, AnAttemptOutlastsTheAdapterButNotTheBus) {
    holdBack("Unmount sdb1");
    startWithStick();
    auto attempt = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); }));
    volumes.reset();
    disks.refuse(*held, "DeviceBusy");
    EXPECT_FALSE(resultOf(std::move(attempt)));
    linger(50);
    EXPECT_THAT(log.lines, IsEmpty());

    disks.onCall = [this](const QString&, const QDBusMessage&) {
        bus.stop();
        return true;
    };
    disks.stop();
    startAll();
    EXPECT_EQ(eject("/mnt/a"), "Unmount sdb1: kept");
    EXPECT_TRUE(becomes({}));
}

} // namespace
} // namespace velmorquit
