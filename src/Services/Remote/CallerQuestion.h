#pragma once

#include "Loop/MainLoop.h"
#include "Platform/RemoteCommands.h"

#include <functional>
#include <optional>
#include <string>

namespace velmorquit {

/// Asks the user about what programs that are shut in ask for. They may look, and hold things up;
/// whatever closes, forces, forgets or ends anything needs the user's word on the screen.
///
/// There is one question at a time, and none for a while after a no: a program that asks again and
/// again gets no more of them than one in an hour.
class CallerQuestion {
public:
    /// Without an answer within this time it is a no.
    static constexpr Duration patience = 1min;
    /// After the first no; twice as long after each that follows, and not longer than an hour.
    static constexpr Duration rest = 1min;
    static constexpr Duration longestRest = 1h;

    /// How the question is put.
    struct Screen {
        /// With the caption of the button that says yes; the answer comes later, on the main loop.
        std::function<void(const std::string& question, const std::string& button,
                           std::function<void(bool isWanted)> answer)>
            ask;
        /// Takes the question away, which may answer it.
        std::function<void()> withdraw;
    };

    explicit CallerQuestion(MainLoop& loop) : loop_(loop) {}

    /// Whether the command is one of those that not everybody may give.
    [[nodiscard]] static bool isAbout(const RemoteCommand& command);

    /// Until it is set every such command is refused.
    Screen screen;

    /// None when the command may be carried out at once. Else the user is asked, or that is
    /// refused: `agreed` is called after a yes. The subject is what the command names, as it is to
    /// stand in the question; empty where it names nothing.
    [[nodiscard]] std::optional<RemoteAnswer> consider(const RemoteCommand& command,
                                                       const std::string& subject,
                                                       std::function<void()> agreed);

private:
    void hear(unsigned question, bool isWanted);

    MainLoop& loop_;
    std::function<void()> agreed_; ///< set while a question is open
    unsigned question_ = 0;        ///< the last one; answers to those before don't count
    Handle losingPatience_;
    Duration nextRest_ = rest;
    std::optional<Uptime> quietUntil_;
};

} // namespace velmorquit
