#pragma once

#include "Linux/Windows/ToplevelSource.h"
#include "Loop/Time.h"

#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// The progress of a request to quit, as far as the application's windows show it.
class QuitRequest {
public:
    /// A window opened this soon after the request is its question, even if nobody has looked.
    static constexpr Duration questionTime = 10s;
    /// An ordinary window that came after the request may meanwhile be one that the user works
    /// with: it counts as a question for this long after the last look.
    static constexpr Duration plainQuestionTime = 10min;
    /// A change of the window with the keyboard is noticed this much later.
    static constexpr Duration noticeTime = 1s;

    /// The application is being asked, with these windows open.
    void begin(const std::vector<Toplevel>& windows, Uptime now);
    [[nodiscard]] bool hasBegun() const { return askedAt_.has_value(); }

    /// Notes that one of its windows is open now.
    void note(std::uint64_t window, Uptime now);
    /// Called by those who ask why it stays: its new windows are questions, except ordinary ones
    /// that came after the user had gone on working with the application.
    void look(const std::vector<Toplevel>& windows, std::optional<Uptime> used, Uptime now);

    /// Whether one of these windows waits for an answer. A modal dialog also counts if it was open
    /// before the request, since it keeps the others from closing just as well.
    [[nodiscard]] bool showsQuestion(const std::vector<Toplevel>& windows, Uptime now) const;

    /// Whether a second request might be taken as an answer: a question is open, or a window that
    /// was asked is still open and the application has not been used since (some ask inside it,
    /// where nobody else sees that). Some programs too old to be pinged close at a second request,
    /// whatever is lost: they wait until the user decides.
    [[nodiscard]] bool isOpen(const std::vector<Toplevel>& windows, std::optional<Uptime> used,
                              Uptime now) const;

private:
    [[nodiscard]] static bool isPlain(const Toplevel& window);
    [[nodiscard]] bool wasUsedSince(std::optional<Uptime> used) const;
    [[nodiscard]] bool isQuestion(const Toplevel& window, Uptime now) const;

    std::optional<Uptime> askedAt_;
    Uptime lookedAt_;
    /// The windows that were open when it was asked.
    std::set<std::uint64_t> asked_;
    /// The windows that it has opened since as questions.
    std::set<std::uint64_t> questions_;
};

} // namespace velmorquit
