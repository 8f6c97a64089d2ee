#include "Linux/UDisksVolumesTest.h"

namespace velmorquit {
namespace {

using Paths = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(UDisksVolumesTest, TellsWhatEachVolumeIs) {
    disks.block("sdb1", makedev(8, 17), "Stick", {{"IdLabel", "Càmera"}, {"Size", 4096ULL}});
    mount("sdb1", "8:17", {"/media/anna/x", "/mnt/x"});
    mount("sdb2", "8:18", {"/media/anna/F\xF3tos"});
    startAll();
    EXPECT_EQ(paths(), (Paths{"/", "/media/anna/x", "/media/anna/F\xF3tos"}));

    const Volume disk = volume("/");
    EXPECT_EQ(disk.name, "/");
    EXPECT_EQ(disk.isInternal, true);
    EXPECT_EQ(disk.isRemovable, false);
    EXPECT_EQ(disk.isEjectable, false);
    EXPECT_TRUE(disk.holdsSystem);

    const Volume stick = volume("/media/anna/x");
    EXPECT_EQ(stick.name, "Càmera");
    EXPECT_EQ(stick.capacity, 4096);
    EXPECT_EQ(stick.isBrowsable, true);
    EXPECT_EQ(stick.isLocal, true);
    EXPECT_EQ(stick.isInternal, false);
    EXPECT_EQ(stick.isRemovable, true);
    EXPECT_EQ(stick.isEjectable, true);
    EXPECT_FALSE(stick.holdsSystem);
    EXPECT_EQ(volume("/media/anna/F\xF3tos").name, "Fótos");
}

TEST_F(UDisksVolumesTest, AnExternalDriveIsNotInternalWhateverIsGuessed) {
    disks.block("sdb1", makedev(8, 17), "Stick", {{"HintSystem", true}});
    mount("sdb1", "8:17", {"/mnt/a"});
    // The content of an encrypted partition is where that is.
    kernel.device("dm-0", "254:0", {"sdb2"});
    disks.block("sdb2_open", makedev(254, 0), "",
                {{"HintSystem", true},
                 {"CryptoBackingDevice", QVariant::fromValue(StandInDisks::pathOf("sdb2"))}});
    mount("sdb2_open", "254:0", {"/mnt/b"});
    startAll();
    for (const char* path : {"/mnt/a", "/mnt/b"}) {
        EXPECT_EQ(volume(path).isInternal, false) << path;
        EXPECT_EQ(volume(path).isEjectable, true) << path;
    }
}

TEST_F(UDisksVolumesTest, WhatIsMissingOrDamagedIsNone) {
    disks.objects[StandInDisks::pathOf("Stick")]["org.freedesktop.UDisks2.Drive"] = {
        {"Removable", "yes"}, {"MediaRemovable", false}, {"Ejectable", 1}, {"ConnectionBus", 7}};
    disks.objects[StandInDisks::pathOf("sdb1")]["org.freedesktop.UDisks2.Block"] = {
        {"DeviceNumber", "8:17"},
        {"Drive", QVariant::fromValue(StandInDisks::pathOf("Stick"))},
        {"Size", -1},
        {"IdLabel", QByteArray("x")}};
    disks.objects[StandInDisks::pathOf("sdb2")]["org.freedesktop.UDisks2.Filesystem"] = {
        {"MountPoints", QStringList{"/media/no"}}};
    disks.objects[StandInDisks::pathOf("odd")]["org.freedesktop.UDisks2.Filesystem"] = {
        {"MountPoints", QVariant::fromValue(QByteArrayList{"", "relative", QByteArray(1, '\0')})}};
    mount("sdb1", "8:17", {"/mnt/a"});
    startAll();
    EXPECT_EQ(paths(), (Paths{"/", "/mnt/a"}));
    const Volume damaged = volume("/mnt/a");
    EXPECT_EQ(damaged.name, "a");
    EXPECT_EQ(damaged.capacity, std::nullopt);
    EXPECT_EQ(damaged.isBrowsable, std::nullopt);
    EXPECT_EQ(damaged.isInternal, std::nullopt);
    EXPECT_EQ(damaged.isRemovable, std::nullopt);
    EXPECT_EQ(damaged.isEjectable, std::nullopt);
    EXPECT_TRUE(damaged.holdsSystem) << "when in doubt it does";
}

TEST_F(UDisksVolumesTest, SignalsKeepTheAccountFreshWithoutAskingAgain) {
    startAll();
    int told = 0;
    const Handle handle = volumes->observe([&] { ++told; });
    mount("sdb1", "8:17", {"/mnt/a"});
    EXPECT_EQ(paths(), Paths{"/"}) << "from memory";
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));
    EXPECT_TRUE(waitUntil([&] { return told == 1; }));

    disks.block("sdb1", makedev(8, 17), "Stick", {{"IdLabel", "Nome"}});
    disks.tellChanged("sdb1", "Block", {{"IdLabel", "Nome"}});
    EXPECT_TRUE(waitUntil([&] { return volume("/mnt/a").name == "Nome"; }));

    disks.drive("Card", {{"ConnectionBus", "sdio"}, {"Ejectable", true}});
    disks.block("mmc", makedev(179, 0), "Card");
    disks.objects[StandInDisks::pathOf("mmc")]["org.freedesktop.UDisks2.Filesystem"] = {
        {"MountPoints", QVariant::fromValue(QByteArrayList{"/media/card"})}};
    disks.tellAdded("Card");
    disks.tellAdded("mmc");
    EXPECT_TRUE(becomes({"/media/card", "/", "/mnt/a"}));
    EXPECT_EQ(volume("/media/card").isEjectable, true);
    EXPECT_TRUE(waitUntil([&] { return told == 2; })) << told;

    disks.remove("mmc");
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));
    EXPECT_EQ(disks.accounts, 1);
    disks.objects[StandInDisks::pathOf("sdb1")].remove("org.freedesktop.UDisks2.Filesystem");
    disks.tellChanged("sdb1", "Filesystem", {}, {"MountPoints"});
    EXPECT_TRUE(becomes({"/"})) << "what is only said to have changed is asked for";
    EXPECT_EQ(disks.accounts, 2);
}

TEST_F(UDisksVolumesTest, NobodyElseCanSpeakForUDisks) {
    mount("sdb1", "8:17", {"/mnt/a"});
    startAll();
    StandInDisks liar(bus.connect());
    liar.mount("sdb1", {});
    liar.signal("/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager",
                "InterfacesRemoved",
                {QVariant::fromValue(StandInDisks::pathOf("sdb1")),
                 QStringList{"org.freedesktop.UDisks2.Block"}});
    liar.signal("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                {"org.freedesktop.UDisks2", ":1.1", ""});
    for (const char* name : {"InterfacesAdded", "InterfacesRemoved"})
        disks.signal("/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager", name,
                     {"odd", 1});
    mount("sdb2", "8:18", {"/mnt/b"});
    EXPECT_TRUE(becomes({"/", "/mnt/a", "/mnt/b"}));
    QDBusConnection::disconnectFromBus("liar");
}

TEST_F(UDisksVolumesTest, WithoutUDisksNothingIsKnownUntilItComesAndAfterItGoes) {
    startVolumes();
    EXPECT_TRUE(waitUntil([&] { return !log.lines.empty(); }));
    EXPECT_THAT(paths(), IsEmpty());
    int told = 0;
    const Handle handle = volumes->observe([&] { ++told; });
    for (int round = 1; round <= 3; ++round) {
        disks.start();
        EXPECT_TRUE(becomes({"/"}));
        disks.stop();
        EXPECT_TRUE(becomes({}));
    }
    EXPECT_TRUE(waitUntil([&] { return told == 6; })) << told;
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr("ServiceUnknown")));
}

TEST_F(UDisksVolumesTest, AnAnswerThatIsLateOrDamagedIsNeverStale) {
    std::optional<QDBusMessage> held;
    disks.onAccount = [&](const QDBusMessage& message) {
        held = message;
        return true;
    };
    disks.start();
    startVolumes();
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); }));
    mount("sdb1", "8:17", {"/mnt/a"});
    linger(50);
    EXPECT_THAT(paths(), IsEmpty());
    theirs.send(held->createReply(QVariant::fromValue(disks.objects)));
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));

    disks.onAccount = [&](const QDBusMessage& message) {
        theirs.send(message.createReply(QStringList{"odd"}));
        return true;
    };
    disks.stop();
    disks.start();
    EXPECT_TRUE(becomes({}));
    linger(50);
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(log.lines.size(), 1);
    EXPECT_FALSE(eject("/"));
}

TEST_F(UDisksVolumesTest, TheEndOfTheBusIsTheEndOfTheAccount) {
    startAll();
    bus.stop();
    EXPECT_TRUE(becomes({}));
    EXPECT_TRUE(eject("/mnt/never")) << "the kernel says that nothing is mounted there";
    EXPECT_FALSE(eject("/"));
}

TEST_F(UDisksVolumesTest, MayGoWhileItAsksAndNeedsNoBus) {
    disks.start();
    startVolumes();
    volumes.reset();
    UDisksVolumes nowhere(loop, log, QDBusConnection("none"), kernel.root());
    linger(100);
    EXPECT_THAT(nowhere.mounted(), IsEmpty());
    EXPECT_TRUE(log.lines.empty());
}

} // namespace
} // namespace velmorquit
