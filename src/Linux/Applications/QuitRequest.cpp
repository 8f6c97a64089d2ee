#include "Linux/Applications/QuitRequest.h"

#include <algorithm>

namespace velmorquit {

void QuitRequest::begin(const std::vector<Toplevel>& windows, Uptime now) {
    askedAt_ = lookedAt_ = now;
    asked_.clear();
    questions_.clear();
    for (const Toplevel& one : windows)
        asked_.insert(one.window);
}

void QuitRequest::note(std::uint64_t window, Uptime now) {
    if (askedAt_ && now - *askedAt_ <= questionTime && !asked_.contains(window))
        questions_.insert(window);
}

void QuitRequest::look(const std::vector<Toplevel>& windows, std::optional<Uptime> used,
                       Uptime now) {
    lookedAt_ = now;
    for (const Toplevel& one : windows) {
        if (askedAt_ && !asked_.contains(one.window) && (!isPlain(one) || !wasUsedSince(used)))
            questions_.insert(one.window);
    }
}

bool QuitRequest::isPlain(const Toplevel& window) {
    return window.isOrdinary && !window.isDialogOfAnother;
}

bool QuitRequest::wasUsedSince(std::optional<Uptime> used) const {
    return used && askedAt_ && *used - *askedAt_ > noticeTime;
}

bool QuitRequest::showsQuestion(const std::vector<Toplevel>& windows, Uptime now) const {
    return std::ranges::any_of(windows, [&](const Toplevel& one) { return isQuestion(one, now); });
}

bool QuitRequest::isQuestion(const Toplevel& window, Uptime now) const {
    if (window.isDialogOfAnother && window.isModal)
        return true;
    const bool isFresh = now - lookedAt_ <= plainQuestionTime;
    return questions_.contains(window.window) && (!isPlain(window) || isFresh);
}

bool QuitRequest::isOpen(const std::vector<Toplevel>& windows, std::optional<Uptime> used,
                         Uptime now) const {
    if (!askedAt_)
        return false;
    const bool hasAsked = !questions_.empty();
    const auto maySayMore = [&](const Toplevel& one) {
        return asked_.contains(one.window) &&
               (!wasUsedSince(used) || (!hasAsked && !one.canBePinged));
    };
    return showsQuestion(windows, now) || std::ranges::any_of(windows, maySayMore);
}

} // namespace velmorquit
