#pragma once

#include "Linux/Windows/ToplevelSource.h"
#include "Loop/Time.h"

#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// What has become of asking an application to quit, as far as its windows tell.
class QuitRequest {
public:
    /// What it opens so soon after it was asked is its question, whether anybody looks or not.
    static constexpr Duration questionTime = 10s;
    /// A window like any other that came after it was asked may be what the user works with by
    /// then: it is a question for that long after anybody has looked last.
    static constexpr Duration plainQuestionTime = 10min;
    /// That another window has the keyboard now is noticed a moment later.
    static constexpr Duration noticeTime = 1s;

    /// It is being asked, with these windows open.
    void begin(const std::vector<Toplevel>& windows, Uptime now);
    [[nodiscard]] bool hasBegun() const { return askedAt_.has_value(); }

    /// Takes note of one of its windows that is open now.
    void note(std::uint64_t window, Uptime now);
    /// Somebody wants to know why it stays: what is new among its windows is a question.
    /// One like any other that has come after somebody has worked with it is the user's own.
    void look(const std::vector<Toplevel>& windows, std::optional<Uptime> used, Uptime now);

    /// Whether one of these windows waits for an answer. One that keeps others from being used may
    /// have been there before, and keeps them from closing just as well.
    [[nodiscard]] bool showsQuestion(const std::vector<Toplevel>& windows, Uptime now) const;

    /// Whether asking once more might be an answer: a question is open; or a window that was asked
    /// is, and nobody has used the application since (some put their question inside, where nobody
    /// else sees it). Of programs so old that they can't be asked whether they react, some close
    /// when they are asked a second time, whatever is lost: that holds until the user speaks.
    [[nodiscard]] bool isOpen(const std::vector<Toplevel>& windows, std::optional<Uptime> used,
                              Uptime now) const;

private:
    [[nodiscard]] static bool isPlain(const Toplevel& window);
    [[nodiscard]] bool wasUsedSince(std::optional<Uptime> used) const;
    [[nodiscard]] bool isQuestion(const Toplevel& window, Uptime now) const;

    std::optional<Uptime> askedAt_;
    Uptime lookedAt_;
    /// Those that were open when it was asked.
    std::set<std::uint64_t> asked_;
    /// Those that it has opened in answer to that.
    std::set<std::uint64_t> questions_;
};

} // namespace velmorquit
