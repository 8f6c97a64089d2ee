#pragma once

#include "Loop/MainLoop.h"
#include "Platform/RemoteCommands.h"

#include <functional>
#include <optional>
#include <string>

namespace velmorquit {

/// Asks the user to confirm what sandboxed programs want. They may look, and hold things up; to
/// close, force, forget or end anything they need the user's consent on the screen.
///
/// There is one question at a time, and none for a while after a no: a program that keeps asking
/// ends up with no more than one question an hour.
class CallerQuestion {
public:
    /// No answer within this time counts as a no.
    static constexpr Duration patience = 1min;
    /// The pause after the first no; it doubles with each further one, up to an hour.
    static constexpr Duration rest = 1min;
    static constexpr Duration longestRest = 1h;

    /// How the question is put.
    struct Screen {
        /// `button` is the caption of the yes button; the answer comes later, on the main loop.
        std::function<void(const std::string& question, const std::string& button,
                           std::function<void(bool isWanted)> answer)>
            ask;
        /// Removes the question; that may also call `answer`.
        std::function<void()> withdraw;
    };

    explicit CallerQuestion(MainLoop& loop) : loop_(loop) {}

    /// Whether sandboxed programs need the user's consent for this command.
    [[nodiscard]] static bool isAbout(const RemoteCommand& command);

    /// Until it is set, every such command is refused.
    Screen screen;

    /// None when the command may be carried out at once. Otherwise the user is asked, or the
    /// command is refused: `agreed` is called after a yes. `subject` is what the command names, as
    /// it appears in the question; empty where it names nothing.
    [[nodiscard]] std::optional<RemoteAnswer> consider(const RemoteCommand& command,
                                                       const std::string& subject,
                                                       std::function<void()> agreed);

private:
    void hear(unsigned question, bool isWanted);

    MainLoop& loop_;
    std::function<void()> agreed_; ///< set while a question is open
    unsigned question_ = 0; ///< number of the last one; late answers to earlier ones are ignored
    Handle losingPatience_;
    Duration nextRest_ = rest;
    std::optional<Uptime> quietUntil_;
};

} // namespace velmorquit
