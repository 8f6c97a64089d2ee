#include "Services/SessionEnd/EndNotice.h"

#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

EndNotice::EndNotice(MainLoop& loop, LoginWindow& loginWindow, Notice& notice)
    : loop_(loop), loginWindow_(loginWindow), notice_(notice) {
    notice_.onButton = [this](const std::string& button) { answer(button); };
    onCancel = [this] { loginWindow_.cancel(); };
    following_ = loginWindow_.state.subscribe([this] { follow(); });
}

EndNotice::~EndNotice() {
    notice_.onButton = nullptr;
    if (isShown_)
        notice_.withdraw();
}

void EndNotice::follow() {
    const EndState& state = loginWindow_.state;
    isAsking_ = isAsking_ && state.canBeForced;
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

// Each new text may come up before the user's eyes again, so there is one only when it differs.
void EndNotice::tell() {
    telling_.reset();
    const EndState& state = loginWindow_.state;
    if (state.stage == EndState::Stage::none || state.stage == EndState::Stage::underWay) {
        if (std::exchange(isShown_, false))
            notice_.withdraw();
        return;
    }
    if (isAsking_) {
        ask();
        return;
    }
    const bool isComing = state.isComing();
    const std::string text = EndTexts::text(state);
    // What was waited for has gone: that is worth no notice of its own.
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

void EndNotice::ask() {
    const EndState& state = loginWindow_.state;
    if (std::exchange(askedList_, state.list) != state.list)
        askedAt_ = loop_.uptime();
    show({.title = EndTexts::anywayQuestion(state.request),
          .text = EndTexts::anywayText(state),
          .buttons = {{"cancel", localized("Annulla")},
                      {"confirm", EndTexts::anyway(state.request)}},
          .stays = true});
}

void EndNotice::show(const Notice::Content& content) {
    const bool isNew = !isShown_ || content.title != shown_.title || content.text != shown_.text ||
                       content.buttons != shown_.buttons;
    isShown_ = true;
    shown_ = content;
    if (isNew)
        notice_.show(content);
}

// A click may have been meant for what was there a moment ago. What stays may have changed under
// the user's finger: then it is a new question.
void EndNotice::answer(const std::string& button) {
    if (button == "cancel") {
        isAsking_ = false;
        onCancel();
    } else if (button == "anyway" && loginWindow_.state->canBeForced) {
        isAsking_ = true;
        askedAt_ = loop_.uptime();
        ask();
    } else if (button == "confirm" && isAsking_ && loop_.uptime() - askedAt_ >= readingTime) {
        isAsking_ = !loginWindow_.endAnyway(askedList_) && loginWindow_.state->canBeForced;
        tell();
    }
}

} // namespace velmorquit
