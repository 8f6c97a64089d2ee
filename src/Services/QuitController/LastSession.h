#pragma once

#include "Loop/Published.h"
#include "Model/SavedApp.h"
#include "Platform/Desktop.h"
#include "Services/QuitController/OpenApp.h"
#include "Services/Settings.h"

#include <string>
#include <vector>

namespace velmorquit {

/// What the last run has closed, kept across starts, so that it can be opened again.
class LastSession {
public:
    /// An older one is not offered any more to a program that starts.
    static constexpr Duration lastSessionAge = 7 * 24h;

    /// Reads it from the preferences.
    LastSession(const Desktop& desktop, Settings& settings);

    /// What the last run that closed anything has closed, most memory first.
    Published<std::vector<SavedApp>, LastSession> lastSession;
    /// Names of what that run has closed too, but that no file starts. They aren't stored.
    Published<std::vector<std::string>, LastSession> closedForGood;

    /// Stores the applications that quit, most memory first.
    void remember(const std::vector<OpenApp>& closed);

    /// Those of the last session that don't run now and that can still be started.
    [[nodiscard]] std::vector<SavedApp> reopenable() const;

    /// Starts all that is `reopenable` in the background, and forgets the last session. Returns at
    /// once; whether they come is not told.
    void reopenLastSession();

    /// Forgets the last session, in the preferences too.
    void forgetLastSession();

private:
    Desktop desktop_;
    Settings& settings_;
};

} // namespace velmorquit
