#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// A short message of the desktop's, in a corner of the screen. One at a time: a new one takes the
/// last one's place. Every operation returns at once; where nobody shows notices, nothing happens.
class Notice {
public:
    struct Button {
        std::string id;
        std::string caption;

        friend bool operator==(const Button&, const Button&) = default;
    };
    struct Content {
        std::string title;
        std::string text; ///< as it is, without markup
        std::vector<Button> buttons{};
        /// It stays until it is answered or withdrawn, not for as long as the desktop thinks right.
        bool stays = false;
    };

    virtual ~Notice() = default;

    virtual void show(const Content& content) = 0;
    /// Takes away what is shown.
    virtual void withdraw() = 0;

    /// Called with the id of the button that the user has pressed. May be empty.
    std::function<void(const std::string& button)> onButton;

    /// Called in a later turn when nobody can press the buttons of what is shown: nobody shows
    /// notices, or those that are shown have no buttons. May be empty.
    std::function<void()> onUnanswerable;
};

} // namespace velmorquit
