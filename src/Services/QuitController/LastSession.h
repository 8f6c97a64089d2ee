#pragma once

#include "Loop/Published.h"
#include "Model/SavedApp.h"
#include "Platform/Desktop.h"
#include "Services/QuitController/OpenApp.h"
#include "Services/Settings.h"

#include <string>
#include <vector>

namespace velmorquit {

/// The applications that the last run closed, kept across starts so that they can be reopened.
class LastSession {
public:
    /// An older session is no longer offered when the program starts.
    static constexpr Duration lastSessionAge = 7 * 24h;

    /// Reads it from the preferences.
    LastSession(const Desktop& desktop, Settings& settings);

    /// The applications closed by the last run that closed any, most memory first.
    Published<std::vector<SavedApp>, LastSession> lastSession;
    /// Names of those it closed that no file starts. They aren't stored.
    Published<std::vector<std::string>, LastSession> closedForGood;

    /// Stores the applications that quit, most memory first.
    void remember(const std::vector<OpenApp>& closed);

    /// Those of the last session that aren't running now and can still be started.
    [[nodiscard]] std::vector<SavedApp> reopenable() const;

    /// Starts all that is `reopenable` in the background, and forgets the last session. Returns at
    /// once and doesn't report whether they start.
    void reopenLastSession();

    /// Forgets the last session, in the preferences too.
    void forgetLastSession();

private:
    Desktop desktop_;
    Settings& settings_;
};

} // namespace velmorquit
