#pragma once

#include "Desktop/DesktopStory.h"

#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QJsonArray>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmorquit {

/// With a backup tool, an external drive named Photos and a power service, all of them stand-ins.
class PowerStory : public DesktopStory {
protected:
    PowerStory() {
        std::filesystem::create_directory(folder());
        ::setenv("VELMOR_STAND_IN_SYSTEM_BUS", bus.address().c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_TOOL", STAND_INS "/backup-tool", 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_DESTINATIONS", (folder() / "destinations").c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_SECONDS", "3", 1);
    }

    /// So many attempts to unmount the drive fail.
    void startAll(int busy = 0) {
        services = std::make_unique<Child>(std::vector<std::string>{
            STAND_INS "/system-services", bus.address(), folder() / "calls", "--busy",
            std::to_string(busy), "--account", account()});
        await("the system's services", [this] {
            if (!services->isRunning())
                throw std::runtime_error("no services: " + services->output());
            return services->output() == "ready\n";
        });
        startProgram();
        await("the drive", [] { return status()["drives"].toArray().size() == 1; });
    }

    /// What the stand-ins were asked for.
    static std::vector<std::string> calls() {
        std::vector<std::string> lines;
        std::istringstream stream(contents(folder() / "calls"));
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
    /// Waits until the power service was asked for anything, and a while longer.
    static void awaitPowerCall() {
        await("a call of the power service",
              [] { return contents(folder() / "calls").find("login1") != std::string::npos; });
        linger(1500);
    }

    /// What login1 says beyond what it is asked: see the stand-in.
    static std::filesystem::path account() { return folder() / "account.json"; }
    static std::filesystem::path folder() { return home() / "stand-ins"; }

    /// The program accepts only a bus that lies in the folder of its own virtual desktop.
    static std::string withinTheDesktop() {
        const std::filesystem::path run = std::getenv("XDG_RUNTIME_DIR");
        ::setenv("TMPDIR", run.parent_path().c_str(), 1);
        return "system.";
    }

    PrivateBus bus{withinTheDesktop()};
    std::unique_ptr<Child> services;
};

} // namespace velmorquit
