#include "Linux/UDisksVolumesTest.h"

namespace velmorquit {
namespace {

using Paths = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

/// All that is told of it, but for its path.
std::string told(const Volume& volume) {
    std::string text = volume.name.value_or("?") + ' ';
    text += volume.capacity ? std::to_string(*volume.capacity) : "?";
    const std::pair<const char*, std::optional<bool>> traits[] = {
        {"browsable", volume.isBrowsable}, {"local", volume.isLocal},
        {"internal", volume.isInternal},   {"removable", volume.isRemovable},
        {"ejectable", volume.isEjectable}, {"system", volume.holdsSystem}};
    for (const auto& [name, is] : traits)
        text += is.value_or(true) ? std::string(is ? " " : " ?") + name : "";
    return text;
}

TEST_F(UDisksVolumesTest, TellsWhatEachVolumeIs) {
    disks.of("sdb1", "Block").insert({{"IdLabel", "Càmera"}, {"Size", 4096ULL}});
    mount("sdb1", {"/media/anna/x", "/mnt/x"});
    mount("sdb2", {"/media/anna/F\xF3tos"});
    startAll();
    EXPECT_EQ(paths(), (Paths{"/", "/media/anna/x", "/media/anna/F\xF3tos"}));
    EXPECT_EQ(told(volume("/")), "/ 1048576 browsable local internal system");
    EXPECT_EQ(told(volume("/media/anna/x")), "Càmera 4096 browsable local removable ejectable");
    EXPECT_EQ(volume("/media/anna/F\xF3tos").name, "Fótos");
}

TEST_F(UDisksVolumesTest, AnExternalDriveIsNotInternalWhateverIsGuessed) {
    disks.of("sdb1", "Block")["HintSystem"] = true;
    mount("sdb1", {"/mnt/a"});
    // The content of an encrypted partition is where that is.
    unlock(0, true);
    mount("sdb2_open", {"/mnt/b"});
    startAll();
    for (const char* path : {"/mnt/a", "/mnt/b"})
        EXPECT_EQ(told(volume(path)).substr(2), "1048576 browsable local removable ejectable");
}

TEST_F(UDisksVolumesTest, WhatIsMissingOrDamagedIsNone) {
    disks.drive(
        "Stick",
        {{"Removable", "yes"}, {"MediaRemovable", false}, {"Ejectable", 1}, {"ConnectionBus", 7}});
    disks.of("sdb1", "Block") = {{"DeviceNumber", "8:17"},
                                 {"Drive", StandInDisks::linkTo("Stick")},
                                 {"Size", -1},
                                 {"IdLabel", QByteArray("x")}};
    disks.of("sdb2", "Filesystem") = {{"MountPoints", QStringList{"/media/no"}}};
    disks.of("odd", "Filesystem") = {
        {"MountPoints", QVariant::fromValue(QByteArrayList{"", "relative", QByteArray(1, '\0')})}};
    mount("sdb1", {"/mnt/a"});
    startAll();
    EXPECT_EQ(paths(), (Paths{"/", "/mnt/a"}));
    EXPECT_EQ(told(volume("/mnt/a")), "a ? ?browsable local ?internal ?removable ?ejectable system")
        << "when in doubt it holds the system";
}

TEST_F(UDisksVolumesTest, SignalsKeepTheAccountFreshWithoutAskingAgain) {
    startAll();
    int changes = 0;
    const Handle handle = volumes->observe([&] { ++changes; });
    mount("sdb1", {"/mnt/a"});
    EXPECT_EQ(paths(), Paths{"/"}) << "from memory";
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));
    EXPECT_TRUE(waitUntil([&] { return changes == 1; }));

    disks.tellChanged("sdb1", "Block", {{"IdLabel", "Nome"}});
    EXPECT_TRUE(waitUntil([&] { return volume("/mnt/a").name == "Nome"; }));

    disks.drive("Card", {{"ConnectionBus", "sdio"}, {"Ejectable", true}});
    disks.block("mmc", makedev(179, 0), "Card");
    disks.of("mmc",
             "Filesystem") = {{"MountPoints", QVariant::fromValue(QByteArrayList{"/media/card"})}};
    disks.tellAdded("Card");
    disks.tellAdded("mmc");
    EXPECT_TRUE(becomes({"/media/card", "/", "/mnt/a"}));
    EXPECT_EQ(volume("/media/card").isEjectable, true);
    EXPECT_TRUE(waitUntil([&] { return changes == 2; })) << changes;

    disks.remove("mmc");
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));
    EXPECT_EQ(disks.accounts, 1);
    disks.of("sdb1", "Filesystem").clear();
    disks.tellChanged("sdb1", "Filesystem", {}, {"MountPoints"});
    EXPECT_TRUE(becomes({"/"})) << "what is only said to have changed is asked for";
    EXPECT_EQ(disks.accounts, 2);
}

TEST_F(UDisksVolumesTest, NobodyElseCanSpeakForUDisks) {
    mount("sdb1", {"/mnt/a"});
    startAll();
    StandInDisks liar(bus.connect());
    liar.mount("sdb1", {});
    liar.remove("sdb1");
    liar.signal("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                {StandInDisks::service, ":1.1", ""});
    for (const char* name : {"InterfacesAdded", "InterfacesRemoved"})
        disks.signal("/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager", name,
                     {"odd", 1});
    settle({liar.bus, disks.bus});
    mount("sdb2", {"/mnt/b"});
    EXPECT_TRUE(becomes({"/", "/mnt/a", "/mnt/b"}));
}

TEST_F(UDisksVolumesTest, WithoutUDisksNothingIsKnownUntilItComesAndAfterItGoes) {
    startVolumes();
    EXPECT_TRUE(waitUntil([&] { return !log.lines.empty(); }));
    EXPECT_THAT(paths(), IsEmpty());
    int changes = 0;
    const Handle handle = volumes->observe([&] { ++changes; });
    for (int round = 1; round <= 3; ++round) {
        disks.start();
        EXPECT_TRUE(becomes({"/"}));
        disks.stop();
        EXPECT_TRUE(becomes({}));
    }
    EXPECT_TRUE(waitUntil([&] { return changes == 6; })) << changes;
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr("ServiceUnknown")));
    disks.start();
    EXPECT_TRUE(becomes({"/"}));
    bus.stop();
    EXPECT_TRUE(becomes({}));
    EXPECT_EQ(eject("/mnt/never"), ": safe") << "the kernel says that nothing is mounted there";
    EXPECT_EQ(eject("/"), ": kept");
}

TEST_F(UDisksVolumesTest, AnAnswerThatIsLateOrDamagedIsNeverStale) {
    disks.isSlow = true;
    disks.start();
    startVolumes();
    volumes.reset(); // which may go while it asks
    startVolumes();
    EXPECT_TRUE(waitUntil([&] { return disks.pending.size() == 2; }));
    mount("sdb1", {"/mnt/a"});
    linger(50);
    EXPECT_THAT(paths(), IsEmpty());
    disks.answer();
    EXPECT_TRUE(becomes({"/", "/mnt/a"}));

    disks.isSlow = false;
    disks.says["GetManagedObjects"] = QStringList{"odd"};
    disks.stop();
    disks.start();
    EXPECT_TRUE(becomes({}));
    linger(50);
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(log.lines.size(), 1);
    EXPECT_EQ(eject("/"), ": kept");
    const UDisksVolumes nowhere(loop, log, QDBusConnection("none"), kernel.root());
    EXPECT_THAT(nowhere.mounted(), IsEmpty());
}

} // namespace
} // namespace velmorquit
