#pragma once

#include "Services/ControllerStory.h"
#include "Services/Remote/RemoteControl.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// A controller as other processes command it, and what they are told.
class RemoteStory : public ControllerStory {
protected:
    using Words = std::vector<std::string>;
    using json = nlohmann::json;

    void serve() {
        actions.setController(&start());
        control = std::make_unique<RemoteControl>(*controller, actions, desktop.ports());
        control->schedule().onAnswer = [this](const ActionAnswer& given) {
            desktop.write("shows: " + given.text);
        };
        desktop.loop.settle();
        desktop.remote.changes.clear();
    }

    /// What a person reads of the answer, or why there is none.
    std::string give(const std::string& verb, const Words& words = {}) {
        const RemoteAnswer given = desktop.remote.give(verb, words);
        switch (given.status) {
        case RemoteAnswer::Status::refused:
            return "refused: " + given.text;
        case RemoteAnswer::Status::unknown:
            return "unknown";
        case RemoteAnswer::Status::asking:
            return "asks";
        case RemoteAnswer::Status::done:
            break;
        }
        return json::parse(given.text).value("text", "");
    }
    json answer(const std::string& verb, const Words& words = {}) {
        return json::parse(desktop.remote.give(verb, words).text);
    }
    json status() { return answer("status"); }

    /// The kinds of changes that were told since it was last called.
    std::string told() {
        std::string kinds;
        for (const std::string& text : std::exchange(desktop.remote.changes, {})) {
            const json change = json::parse(text);
            kinds += change["change"].get<std::string>();
            if (change.contains("seconds"))
                kinds += '=' + change["seconds"].dump();
            kinds += ' ';
        }
        return kinds;
    }

    ActionRunner actions{desktop.loop, desktop.kernel, desktop.formats};
    std::unique_ptr<RemoteControl> control;
};

} // namespace velmorquit
