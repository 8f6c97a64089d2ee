#include "Services/SessionEnd/AnywayQuestion.h"

#include "Services/RunAnswers.h"

#include <utility>

namespace velmorquit {

AnywayQuestion::AnywayQuestion(MainLoop& loop, LoginWindow& loginWindow, Duration readingTime)
    : loop_(loop), loginWindow_(loginWindow), readingTime_(readingTime) {
    // Nobody may be looking when the request ends; the next request needs a new question.
    following_ = loginWindow_.state.subscribe([this] {
        if (!loginWindow_.state->canBeForced)
            giveUp();
    });
}

void AnywayQuestion::follow() {
    const EndState& state = loginWindow_.state;
    isAsked_ = isAsked_ && state.canBeForced;
    if (std::exchange(list_, state.list) != state.list)
        shownAt_ = loop_.uptime();
}

void AnywayQuestion::ask() {
    follow();
    const EndState& state = loginWindow_.state;
    if (isAsked_ || !state.canBeForced ||
        !RunAnswers::isTaken(RunAnswers::Word::endAnyway, RunAnswers::momentOf(state)))
        return;
    isAsked_ = true;
    shownAt_ = loop_.uptime();
}

void AnywayQuestion::confirm() {
    const bool isRead = loop_.uptime() - shownAt_ >= readingTime_;
    if (isAsked_ && isRead && loginWindow_.endAnyway(list_))
        isAsked_ = false;
}

} // namespace velmorquit
