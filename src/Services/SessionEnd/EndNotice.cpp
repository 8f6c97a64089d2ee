#include "Services/SessionEnd/EndNotice.h"

#include "Services/RunAnswers.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

EndNotice::EndNotice(MainLoop& loop, LoginWindow& loginWindow, Notice& notice)
    : loop_(loop), loginWindow_(loginWindow), notice_(notice),
      question_(loop, loginWindow, readingTime) {
    notice_.onButton = [this](const std::string& button) { answer(button); };
    notice_.onUnanswerable = [this] {
        if (isShown_ && std::exchange(isPanelDue_, false) && onUnanswerable)
            onUnanswerable();
    };
    onCancel = [this] { loginWindow_.cancel(); };
    following_ = loginWindow_.state.subscribe([this] { follow(); });
}

EndNotice::~EndNotice() {
    notice_.onButton = nullptr;
    notice_.onUnanswerable = nullptr;
    if (isShown_)
        notice_.withdraw();
}

void EndNotice::follow() {
    const EndState& state = loginWindow_.state;
    const bool canEndByItself =
        std::ranges::none_of(state.obstacles, [](const EndObstacle& obstacle) {
            return obstacle.kind == EndObstacle::Kind::unaskable;
        });
    const bool isWaiting = state.stage == EndState::Stage::waiting;
    if (isWaiting && canEndByItself && !isShown_) {
        if (!telling_.isSet())
            telling_ = loop_.after(delay, [this] { tell(); });
        return;
    }
    telling_.reset();
    tell();
}

// Each new text may pop up in front of the user again, so only a different one is shown.
void EndNotice::tell() {
    telling_.reset();
    const EndState& state = loginWindow_.state;
    if (state.stage == EndState::Stage::none || state.stage == EndState::Stage::underWay) {
        isPanelDue_ = true;
        if (std::exchange(isShown_, false))
            notice_.withdraw();
        return;
    }
    question_.follow();
    if (question_.isAsked()) {
        show(question());
        return;
    }
    const bool isComing = state.isComing();
    const std::string text = EndTexts::text(state);
    // The wait is over: that alone needs no notice.
    if (text.empty() && !isShown_)
        return;
    std::vector<Notice::Button> buttons;
    if (isComing)
        buttons.push_back({"cancel", localized("Annulla")});
    if (state.canBeForced)
        buttons.push_back({"anyway", EndTexts::anyway(state.request)});
    show({.title = EndTexts::title(state),
          .text = text,
          .buttons = std::move(buttons),
          .stays = isComing || state.canBeForced});
}

Notice::Content EndNotice::question() const {
    const EndState& state = loginWindow_.state;
    return {
        .title = EndTexts::anywayQuestion(state.request),
        .text = EndTexts::anywayText(state),
        .buttons = {{"cancel", localized("Annulla")}, {"confirm", EndTexts::anyway(state.request)}},
        .stays = true};
}

void EndNotice::show(const Notice::Content& content) {
    const bool isNew = !isShown_ || content.title != shown_.title || content.text != shown_.text ||
                       content.buttons != shown_.buttons;
    isShown_ = true;
    shown_ = content;
    if (isNew)
        notice_.show(content);
}

// The desktop removes a notice when one of its buttons is pressed.
void EndNotice::showAgain() {
    shown_ = {};
    tell();
}

// A click may have been meant for what was shown a moment ago.
void EndNotice::answer(const std::string& button) {
    using RunAnswers::Word;
    const RunAnswers::Moment moment = RunAnswers::momentOf(loginWindow_.state);
    if (button == "cancel" && RunAnswers::isTaken(Word::cancel, moment)) {
        question_.giveUp();
        onCancel();
    } else if (button == "anyway" && RunAnswers::isTaken(Word::endAnyway, moment)) {
        question_.ask();
        showAgain();
    } else if (button == "confirm" && RunAnswers::isTaken(Word::endAnyway, moment)) {
        question_.confirm();
        showAgain();
    }
}

} // namespace velmorquit
