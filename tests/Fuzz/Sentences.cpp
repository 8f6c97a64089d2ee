#include "Tools/velmorctl/Sentences.h"
#include "Fuzz/Fuzz.h"
#include "Language/LocaleFormats.h"
#include "Tools/velmorctl/FollowedRun.h"

#include <iostream>
#include <sstream>

namespace velmorquit::fuzz {
namespace {

void requireText(const std::string& text, std::size_t size) {
    require(isUtf8(text), "what is printed is a text");
    // The columns of a table are as wide as their widest cell, and no sentence is longer than 200
    // bytes without what it names.
    require(text.size() <= (size + 200) * (size + 64), "no longer than what it is about");
}

void follow(const remote::Json& said, const Formats& formats, AfterQuit then) {
    CommandLine line{.command = &remote::commandOf(remote::Verb::quitAll)};
    line.then = then;
    FollowedRun run(line, formats);
    run.begin(remote::decodeAnswer(said).asked.value_or(std::vector<remote::Application>()));
    for (const remote::Json& one : said) {
        const auto change = remote::decodeChange(one);
        if ((change && run.hear(*change)) || run.hearEnding(remote::decodeEnding(one)))
            return;
    }
}

} // namespace

/// The answer of the program, or of another that has its name on the bus: an object, or an array of
/// changes that come one after the other.
void examine(std::string_view bytes) {
    const std::size_t size = bytes.size();
    static const LocaleFormats formats(Language::italian, QLocale(QLocale::Italian));
    const remote::Json said = remote::parsed(bytes);
    requireText(statusText(remote::decodeStatus(said), formats), size);
    requireText(actionsText(remote::decodeActions(said)), size);
    if (const auto change = remote::decodeChange(said)) {
        requireText(changeText(*change, formats), size);
        // Once it is understood it is the same when it is told again.
        const remote::Json told = remote::encode(*change);
        const auto again = remote::decodeChange(told);
        require(again && remote::encode(*again) == told, "a change is what it was");
    }
    std::ostringstream printed;
    auto* const terminal = std::cout.rdbuf(printed.rdbuf());
    for (const AfterQuit then : {AfterQuit::nothing, AfterQuit::shutDown}) {
        requireText(confirmationQuestion(size, then), size);
        follow(said, formats, then);
    }
    std::cout.rdbuf(terminal);
    requireText(printed.str(), size);
}

} // namespace velmorquit::fuzz
