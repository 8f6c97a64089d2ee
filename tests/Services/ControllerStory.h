#pragma once

#include "Services/QuitController/QuitController.h"
#include "Services/Story.h"

#include <memory>

namespace velmorquit {

/// A controller on a simulated desktop, whose phases and events are in the desktop's log.
class ControllerStory : public Story {
protected:
    /// Call it once the stage is set.
    QuitController& start() {
        controller.reset();
        settings = std::make_unique<Settings>(desktop.loop, desktop.preferences);
        controller = std::make_unique<QuitController>(desktop.ports(), *settings);
        events_ = controller->hearEvents([this](const Event& event) { hear(event); });
        phases_ = controller->phase.subscribe([this] { hearPhase(); });
        stubborn_ = controller->stubborn.subscribe([this] { hearPhase(); });
        desktop.loop.settle();
        desktop.startLog();
        return *controller;
    }
    /// Starts, asks all to quit, and says what happens in that time.
    std::string run(PowerAction action, Duration time) {
        start().quitAll(action);
        return after(time);
    }

    static std::string names(const std::vector<OpenApp>& apps) {
        std::string text;
        for (const OpenApp& app : apps)
            text += (text.empty() ? "" : " ") + app.name;
        return text;
    }

    const OpenApp& app(const std::string& name) {
        for (const OpenApp& app : controller->apps.get()) {
            if (app.name == name)
                return app;
        }
        throw std::out_of_range(name);
    }

    std::unique_ptr<Settings> settings;
    std::unique_ptr<QuitController> controller;
    /// Called after the event is in the log.
    std::function<void(const Event&)> onEvent;

private:
    void hear(const Event& event) {
        if (const auto* quit = std::get_if<events::QuitDone>(&event))
            desktop.write("event quitDone " + std::to_string(quit->closed));
        else if (const auto* progress = std::get_if<events::BackupProgress>(&event))
            desktop.write("event backupProgress " +
                          std::to_string(progress->fraction).substr(0, 4));
        else if (const auto* finished = std::get_if<events::BackupFinished>(&event))
            desktop.write(finished->success ? "event backupFinished"
                                            : "event backupFinished badly");
        else if (const auto* ejected = std::get_if<events::DisksEjected>(&event))
            desktop.write("event disksEjected " + std::to_string(ejected->count) +
                          joined(ejected->failed));
        else if (std::holds_alternative<events::BackupStarted>(event))
            desktop.write("event backupStarted");
        else if (std::holds_alternative<events::ConfirmationNeeded>(event))
            desktop.write("event confirmationNeeded");
        else
            desktop.write("event stubbornApps: " + names(controller->stubborn));
        if (onEvent)
            onEvent(event);
    }

    static std::string joined(const std::vector<std::string>& names) {
        std::string text;
        for (const std::string& name : names)
            text += " -" + name;
        return text;
    }

    /// Each phase once, and anew when other applications stay.
    void hearPhase() {
        std::string text = phaseText();
        // Nobody stays for a turn before the next phase comes.
        if (text != lastPhase_ && text != "waiting: ")
            desktop.write(text);
        lastPhase_ = std::move(text);
    }

    std::string phaseText() const {
        const Phase& phase = controller->phase;
        if (const auto* failed = std::get_if<phases::BackupFailed>(&phase))
            return "backupFailed: " + failed->reason;
        if (is<phases::BackingUp>(phase))
            return "backingUp";
        if (is<phases::Ejecting>(phase))
            return "ejecting";
        if (const auto* quitting = std::get_if<phases::Quitting>(&phase))
            return "quitting " + std::to_string(quitting->total);
        const auto& note = controller->resultNote.get();
        if (const auto* done = std::get_if<phases::Done>(&phase))
            return "done " + std::to_string(done->closed) + ' ' + std::to_string(done->freed) +
                   (note ? ' ' + *note : "");
        return is<phases::Waiting>(phase) ? "waiting: " + names(controller->stubborn) : "idle";
    }

    std::string lastPhase_;
    Handle events_;
    Handle phases_;
    Handle stubborn_;
};

} // namespace velmorquit
