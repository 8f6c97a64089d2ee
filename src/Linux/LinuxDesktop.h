#pragma once

#include "Linux/Program/EndSignals.h"
#include "Linux/Program/FinishedWork.h"
#include "Linux/Windows/Windowing.h"
#include "Platform/Desktop.h"
#include "Platform/DesktopFace.h"
#include "Platform/SessionPorts.h"

#include <functional>
#include <memory>
#include <utility>

namespace velmorquit {

class Notice;

/// The desktop that this program runs on: owns all adapters, and hands them out as ports. There is
/// one at a time.
class LinuxDesktop {
public:
    /// One notice for each subject, so that none replaces another.
    struct Notices {
        Notice& schedule;
        Notice& answers;
        Notice& end;
        Notice& run;
    };

    /// The toolkit's application object already exists; it, the log and the commands must outlive
    /// this. From now on, signals that ask the program to end are remembered.
    LinuxDesktop(SystemLog& log, RemoteCommands& commands, std::unique_ptr<Windowing> windowing);
    LinuxDesktop(const LinuxDesktop&) = delete;
    LinuxDesktop& operator=(const LinuxDesktop&) = delete;
    ~LinuxDesktop();

    /// For the object that ends the session, which is itself passed to `ports`.
    [[nodiscard]] SessionPorts sessionPorts();
    [[nodiscard]] Desktop ports(const Formats& formats, LoginWindow& loginWindow);
    [[nodiscard]] DesktopFace face();
    [[nodiscard]] Notices notices();

    /// `asked` is called each time a signal asks the program to end.
    void onEndAsked(std::function<void()> asked) { endSignals_.onAsked = std::move(asked); }

private:
    struct Base;
    struct Applications;
    struct Services;
    struct Face;

    SystemLog& log_;
    RemoteCommands& commands_;
    EndSignals endSignals_;
    std::unique_ptr<Base> base_;
    std::unique_ptr<Windowing> windowing_;
    WindowSources sources_;
    std::unique_ptr<Applications> applications_;
    std::unique_ptr<Services> services_;
    /// Work on other threads uses nothing that is declared after this.
    FinishedWork finishedWork_;
    std::unique_ptr<Face> face_;
};

} // namespace velmorquit
