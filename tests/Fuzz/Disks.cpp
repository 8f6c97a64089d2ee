#include "Fuzz/Variants.h"
#include "Linux/Volumes/DiskMap.h"

/// A service tells of disks: objects that come, change and go. What the kernel says of the same
/// ones is empty.
void velmorquit::fuzz::examine(std::string_view bytes) {
    static const BlockLayers layers("/nonexistent");
    static const QStringList objects{"/b/sda", "/b/sda1", "/b/dm0", "/b/loop0", "/d/one", "/d/two"};
    static const QStringList interfaces{UDisks::block, UDisks::drive, UDisks::fileSystem,
                                        UDisks::loop, UDisks::encrypted};
    static const QStringList names{"DeviceNumber",  "Drive",       "CryptoBackingDevice",
                                   "IdLabel",       "Size",        "HintIgnore",
                                   "HintSystem",    "IdType",      "MountPoints",
                                   "ConnectionBus", "Removable",   "MediaRemovable",
                                   "Ejectable",     "CanPowerOff", "SiblingId"};
    const QStringList texts = objects + QStringList{"/", "usb", "sdio", "ata", "zfs_member"};
    Input input(bytes);
    DiskAccount account;
    for (int steps = 0; steps < 24 && !input.isEmpty(); ++steps) {
        const std::uint8_t what = input.byte() % 8;
        const QString object = pathFrom(input, objects);
        const QString interface = nameFrom(input, interfaces);
        if (what == 0)
            account.removeInterfaces(object, {interface});
        else if (what == 1 && account.blocks.contains(object))
            account.blocks[object].mountPoints.push_back('/' + input.text());
        else
            account.setProperties(object, interface, mapFrom(input, names, texts));
    }
    const DiskMap map(account, layers);
    for (const auto& [object, block] : account.blocks) {
        const auto drives = map.drivesOf(object);
        const auto blocks = map.blocksOn(drives);
        require(drives.empty() || blocks.contains(object), "a block is on its own drives");
        require(map.holdsSystem(object), "any drive may be needed where nobody knows");
        if (block.mountPoints.empty())
            continue;
        const Volume volume = map.volumeOf(object);
        require(volume.name && !volume.name->empty() && isUtf8(*volume.name),
                "a volume has a name");
        require(!map.blockAt(volume.path).isEmpty(), "a volume is found by its place");
    }
}
