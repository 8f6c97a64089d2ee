#pragma once

#include "Desktop/DesktopStory.h"

#include "support/PrivateBus.h"

#include <cstdlib>
#include <sstream>

namespace velmorquit {

/// With a backup tool, an external drive named Photos and a power service, all of them stand-ins.
class PowerStory : public DesktopStory {
protected:
    PowerStory() {
        std::filesystem::create_directory(standIns);
        ::setenv("VELMOR_STAND_IN_SYSTEM_BUS", bus.address().c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_TOOL", STAND_INS "/backup-tool", 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_DESTINATIONS", (standIns / "destinations").c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_SECONDS", "3", 1);
    }

    /// So many attempts to unmount the drive fail.
    void startAll(int busy = 0) {
        services = std::make_unique<Child>(Words{STAND_INS "/system-services", bus.address(),
                                                 standIns / "calls", "--busy", std::to_string(busy),
                                                 "--account", account});
        awaitText(*services, "ready\n");
        startProgram();
        await("the drive", [] { return status()["drives"].toArray().size() == 1; });
    }

    /// All that the stand-ins were asked for.
    [[nodiscard]] Words calls() const {
        Words lines;
        std::istringstream stream(contents(standIns / "calls"));
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
    /// Waits until the power service was asked for anything, and a while longer.
    void awaitPowerCall() const {
        await("a call of the power service",
              [this] { return contents(standIns / "calls").find("login1") != std::string::npos; });
        linger(1500);
    }

    const std::filesystem::path standIns = home() / "stand-ins";
    /// The file with all else that login1 says: see the stand-in.
    const std::filesystem::path account = standIns / "account.json";

private:
    /// The program accepts only a bus that lies in the folder of its own virtual desktop.
    static std::string withinTheDesktop() {
        ::setenv("TMPDIR", folder("XDG_RUNTIME_DIR").parent_path().c_str(), 1);
        return "system.";
    }

    PrivateBus bus{withinTheDesktop()};
    std::unique_ptr<Child> services;
};

} // namespace velmorquit
