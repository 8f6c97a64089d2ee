#include "Linux/UDisksVolumesTest.h"

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Volumes are taken away through the whole adapter.
class DriveReleaseTest : public UDisksVolumesTest {
protected:
    /// A card reader in the same case as the stick, with a card that is mounted.
    void addNeighbour() {
        kernel.device("sdc", "8:32");
        disks.drive("Card", {{"ConnectionBus", "usb"},
                             {"Ejectable", false},
                             {"CanPowerOff", true},
                             {"SiblingId", "port 1"}});
        disks.block("sdc", makedev(8, 32), "Card");
        mount("sdc", "8:32", {"/mnt/card"});
    }
    void make(const QString& drive, const QString& property, const QVariant& value) {
        disks.objects[StandInDisks::pathOf(drive)]["org.freedesktop.UDisks2.Drive"][property] =
            value;
    }
    void addEncrypted() {
        kernel.device("dm-0", "254:0", {"sdb2"});
        disks.block("sdb2_open", makedev(254, 0), "",
                    {{"CryptoBackingDevice", QVariant::fromValue(StandInDisks::pathOf("sdb2"))}});
        mount("sdb2_open", "254:0", {"/mnt/secret"});
    }
    void refuseTo(const QString& call, const QString& error) {
        disks.onCall = [=, this](const QString& made, const QDBusMessage& message) {
            if (made != call)
                return false;
            disks.refuse(message, error);
            return true;
        };
    }
};

TEST_F(DriveReleaseTest, AllOfTheDriveIsUnmountedAndThenItIsEjected) {
    mount("sdb1", "8:17", {"/mnt/a", "/mnt/elsewhere"});
    mount("sdb2", "8:18", {"/mnt/a/inner"});
    disks.onCall = [](const QString&, const QDBusMessage& message) {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().value(0));
        EXPECT_EQ(options.value("auth.no_user_interaction"), QVariant(false));
        EXPECT_TRUE(message.isInteractiveAuthorizationAllowed());
        return false;
    };
    startAll();
    EXPECT_TRUE(eject("/mnt/elsewhere"));
    EXPECT_EQ(disks.calls,
              (QStringList{"Unmount sdb2", "Unmount sdb1", "Unmount sdb1", "Eject Stick"}));
    EXPECT_TRUE(becomes({"/"}));
    disks.calls.clear();
    EXPECT_TRUE(eject("/mnt/a/inner")) << "it went along";
    EXPECT_THAT(disks.calls, IsEmpty());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(DriveReleaseTest, NothingIsEjectedWhileOneIsBusyAndTheNextAttemptGoesOn) {
    mount("sdb1", "8:17", {"/mnt/a"});
    mount("sdb2", "8:18", {"/mnt/b"});
    refuseTo("Unmount sdb1", "DeviceBusy");
    startAll();
    EXPECT_FALSE(eject("/mnt/b"));
    EXPECT_FALSE(eject("/mnt/b")) << "not mounted any more, but the drive is still in use";
    EXPECT_THAT(disks.calls.filter("Eject"), IsEmpty());
    EXPECT_TRUE(waitUntil([&] { return log.lines.size() == 2; }));
    EXPECT_THAT(log.lines[0],
                testing::AllOf(testing::StartsWith("Velmor Quit: "), testing::HasSubstr("/mnt/b"),
                               testing::HasSubstr("DeviceBusy")));
    disks.onCall = {};
    EXPECT_TRUE(eject("/mnt/b"));
    EXPECT_EQ(disks.calls.back(), "Eject Stick");
    disks.calls.clear();
    EXPECT_TRUE(eject("/mnt/b"));
    EXPECT_THAT(disks.calls, IsEmpty());
}

TEST_F(DriveReleaseTest, WhatIsEncryptedIsLockedBetween) {
    addEncrypted();
    startAll();
    EXPECT_TRUE(eject("/mnt/secret"));
    EXPECT_EQ(disks.calls, (QStringList{"Unmount sdb2_open", "Lock sdb2", "Eject Stick"}));

    disks.calls.clear();
    kernel.device("dm-1", "254:1", {"sdb2"});
    disks.block("sdb2_open", makedev(254, 1), "",
                {{"CryptoBackingDevice", QVariant::fromValue(StandInDisks::pathOf("sdb2"))}});
    mount("sdb1", "8:17", {"/mnt/a"});
    refuseTo("Lock sdb2", "Failed");
    EXPECT_FALSE(eject("/mnt/a")) << "unlocked counts, mounted or not";
    EXPECT_THAT(disks.calls.filter("Eject"), IsEmpty());
}

TEST_F(DriveReleaseTest, AnImageOnTheDriveGoesFirst) {
    kernel.device("loop0", "7:0", {}, "/mnt/a/image.iso");
    disks.block("loop0", makedev(7, 0), "");
    disks.objects[StandInDisks::pathOf("loop0")]["org.freedesktop.UDisks2.Loop"] = {};
    mount("sdb1", "8:17", {"/mnt/a"});
    mount("loop0", "7:0", {"/iso"});
    startAll();
    EXPECT_FALSE(volume("/iso").holdsSystem);
    EXPECT_TRUE(eject("/mnt/a"));
    EXPECT_EQ(disks.calls,
              (QStringList{"Unmount loop0", "Delete loop0", "Unmount sdb1", "Eject Stick"}));
}

TEST_F(DriveReleaseTest, EjectingAnImageLeavesTheDriveThatItLiesOn) {
    kernel.device("loop0", "7:0", {}, "/mnt/a/image.iso");
    disks.block("loop0", makedev(7, 0), "");
    mount("sdb1", "8:17", {"/mnt/a"});
    mount("loop0", "7:0", {"/iso"});
    startAll();
    EXPECT_TRUE(eject("/iso"));
    EXPECT_EQ(disks.calls, QStringList{"Unmount loop0"});
}

TEST_F(DriveReleaseTest, AFileSystemThatReachesOverIsUnmountedBeforeEitherDriveGoes) {
    kernel.device("sdc", "8:32");
    disks.drive("Other", {{"ConnectionBus", "usb"}, {"Ejectable", true}});
    disks.block("sdc", makedev(8, 32), "Other");
    kernel.pool({"sdb2", "sdc"});
    mount("sdb1", "8:17", {"/mnt/a"});
    mount("sdc", "0:50", {"/mnt/pool"});
    startAll();
    EXPECT_TRUE(eject("/mnt/a"));
    EXPECT_EQ(disks.calls, (QStringList{"Unmount sdc", "Unmount sdb1", "Eject Stick"}));
}

TEST_F(DriveReleaseTest, TheDriveOfTheSystemIsNeverTouched) {
    mount("sdb1", "8:17", {"/mnt/a"});
    startAll();
    EXPECT_FALSE(volume("/mnt/a").holdsSystem);
    kernel.swaps("/dev/sdb2 partition 1024 0 -2\n");
    EXPECT_TRUE(volume("/mnt/a").holdsSystem);
    EXPECT_FALSE(eject("/mnt/a"));
    EXPECT_FALSE(eject("/"));
    kernel.swaps("");
    kernel.mount("8:18", "/var/lib/bound", "ext4 /dev/sdb2 rw");
    EXPECT_FALSE(eject("/mnt/a")) << "UDisks2 need not know of it";
    EXPECT_THAT(disks.calls, IsEmpty());
}

TEST_F(DriveReleaseTest, WhatTheKernelStillHasMountedKeepsTheDrive) {
    mount("sdb1", "8:17", {"/mnt/a"});
    kernel.mount("8:17", "/mnt/bound", "ext4 /dev/sdb1 rw");
    startAll();
    EXPECT_FALSE(eject("/mnt/a"));
    EXPECT_FALSE(eject("/mnt/bound"));
    EXPECT_EQ(disks.calls, QStringList{"Unmount sdb1"});
    disks.onUnmounted = {};
    kernel.unmount("/mnt/bound");
    mount("sdb1", "8:17", {"/mnt/a"});
    EXPECT_FALSE(eject("/mnt/a")) << "unmounted, by word only";
    EXPECT_THAT(disks.calls.filter("Eject"), IsEmpty());
}

TEST_F(DriveReleaseTest, PowerIsCutWhereNothingCanBeEjectedAndNoNeighbourNeedsIt) {
    make("Stick", "Ejectable", false);
    addNeighbour();
    mount("sdb1", "8:17", {"/mnt/a"});
    startAll();
    EXPECT_TRUE(eject("/mnt/a"));
    EXPECT_EQ(disks.calls, QStringList{"Unmount sdb1"}) << "the card would go along";
    EXPECT_TRUE(eject("/mnt/card"));
    EXPECT_EQ(disks.calls.back(), "PowerOff Card");
    mount("sdb1", "8:17", {"/mnt/a"});
    EXPECT_TRUE(eject("/mnt/a"));
    EXPECT_EQ(disks.calls.back(), "PowerOff Stick");
}

TEST_F(DriveReleaseTest, ADriveThatCannotBeLetGoIsSafeOnlyWhenItNeedNotBe) {
    refuseTo("Eject Stick", "Failed");
    mount("sdb1", "8:17", {"/mnt/a"});
    startAll();
    EXPECT_TRUE(eject("/mnt/a")) << "by its power";
    EXPECT_EQ(disks.calls, (QStringList{"Unmount sdb1", "Eject Stick", "PowerOff Stick"}));

    disks.drive("Stick", {{"Ejectable", true}, {"CanPowerOff", false}});
    mount("sdb1", "8:17", {"/mnt/a"});
    EXPECT_FALSE(eject("/mnt/a"));
    EXPECT_FALSE(eject("/mnt/a")) << "it is there still";
    disks.drive("Stick", {});
    EXPECT_TRUE(eject("/mnt/a")) << "unmounted is as safe as it gets";
}

TEST_F(DriveReleaseTest, UnpluggedMeanwhileItIsGone) {
    mount("sdb1", "8:17", {"/mnt/a"});
    disks.onCall = [&](const QString& call, const QDBusMessage& message) {
        if (call.startsWith("Unmount")) {
            for (const char* object : {"sdb", "sdb1", "sdb2", "Stick"})
                disks.remove(object);
            kernel.unmount("/mnt/a");
        }
        disks.refuse(message, "Failed");
        return true;
    };
    startAll();
    EXPECT_TRUE(eject("/mnt/a"));
    EXPECT_EQ(disks.calls, QStringList{"Unmount sdb1"});
}

TEST_F(DriveReleaseTest, NotBeingAllowedIsAFailure) {
    for (const char* error : {"NotAuthorized", "NotAuthorizedDismissed", "Timedout"}) {
        mount("sdb1", "8:17", {"/mnt/a"});
        refuseTo("Unmount sdb1", error);
        if (!volumes)
            startAll();
        EXPECT_FALSE(eject("/mnt/a")) << error;
    }
    refuseTo("Unmount sdb1", "NotMounted");
    kernel.unmount("/mnt/a");
    EXPECT_FALSE(eject("/mnt/a")) << "UDisks2 contradicts itself";
}

TEST_F(DriveReleaseTest, OneThatHangsIsAFailureAndHoldsUpNoOther) {
    addNeighbour();
    mount("sdb1", "8:17", {"/mnt/a"});
    disks.onCall = [](const QString& call, const QDBusMessage&) { return call == "Unmount sdb1"; };
    disks.start();
    startVolumes({.unmount = 1500});
    EXPECT_TRUE(waitUntil([&] { return paths().size() == 3; }));
    auto hanging = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return disks.calls.size() == 1; }));
    EXPECT_TRUE(eject("/mnt/card"));
    EXPECT_EQ(disks.calls.back(), "Unmount sdc");
    EXPECT_FALSE(resultOf(hanging));
    EXPECT_THAT(disks.calls.filter("Stick"), IsEmpty());
}

TEST_F(DriveReleaseTest, TwoAttemptsAtADriveTakeTurns) {
    mount("sdb1", "8:17", {"/mnt/a"});
    mount("sdb2", "8:18", {"/mnt/b"});
    std::optional<QDBusMessage> held;
    disks.onCall = [&](const QString& call, const QDBusMessage& message) {
        if (call == "Eject Stick")
            held = message;
        return held.has_value();
    };
    startAll();
    auto first = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return disks.calls.filter("Unmount").size() == 1; }));
    auto second = beginToEject("/mnt/b");
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); }));
    linger(100);
    theirs.send(held->createReply());
    EXPECT_TRUE(resultOf(first));
    EXPECT_TRUE(resultOf(second));
    EXPECT_EQ(disks.calls.size(), 3) << disks.calls.join(", ").toStdString();
}

TEST_F(DriveReleaseTest, TheDeathOfUDisksIsAFailure) {
    mount("sdb1", "8:17", {"/mnt/a"});
    disks.onCall = [this](const QString&, const QDBusMessage&) {
        bus.stop();
        return true;
    };
    startAll();
    EXPECT_FALSE(eject("/mnt/a"));
    EXPECT_TRUE(becomes({}));
}

TEST_F(DriveReleaseTest, AnAttemptOutlastsTheAdapter) {
    mount("sdb1", "8:17", {"/mnt/a"});
    std::optional<QDBusMessage> held;
    disks.onCall = [&](const QString&, const QDBusMessage& message) {
        if (std::exchange(held, message))
            return false;
        return true;
    };
    startAll();
    auto attempt = beginToEject("/mnt/a");
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); }));
    volumes.reset();
    theirs.send(held->createErrorReply("org.freedesktop.UDisks2.Error.DeviceBusy", "no"));
    EXPECT_FALSE(resultOf(attempt));
    linger(50);
    EXPECT_THAT(log.lines, IsEmpty());
}

} // namespace
} // namespace velmorquit
