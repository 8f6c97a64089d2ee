#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// A short message in a corner of the screen, shown by the desktop, one at a time: a new one
/// replaces the last. Every operation returns at once; without a notice service nothing happens.
class Notice {
public:
    struct Button {
        std::string id;
        std::string caption;

        friend bool operator==(const Button&, const Button&) = default;
    };
    struct Content {
        std::string title;
        std::string text; ///< plain text without markup
        std::vector<Button> buttons{};
        /// It stays until answered or withdrawn, however long the desktop usually shows notices.
        bool stays = false;
    };

    virtual ~Notice() = default;

    virtual void show(const Content& content) = 0;
    /// Takes away what is shown.
    virtual void withdraw() = 0;

    /// Called with the id of the button that the user pressed. May be empty.
    std::function<void(const std::string& button)> onButton;

    /// Called in a later turn when the shown buttons can't be pressed: there is no notice service,
    /// or its notices have no buttons. May be empty.
    std::function<void()> onUnanswerable;
};

} // namespace velmorquit
