#include "CommandLine.h"

#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace velmorquit {

namespace {

using remote::Option;
using remote::Verb;
using remote::Words;
using Wrong = std::optional<std::string>;

/// The words that have not been read yet.
using Rest = std::vector<std::string>;

std::string take(Rest& rest) {
    std::string word = std::move(rest.front());
    rest.erase(rest.begin());
    return word;
}

std::string trimmed(const std::string& text) {
    return QString::fromStdString(text).trimmed().toStdString();
}

std::string wantsOneOf(std::string_view what, const std::vector<std::string_view>& words) {
    return localized("%@ vuole una di queste parole: %@", what, joined(words));
}

std::string wantsMoment() {
    return localized("schedule vuole --minutes oppure --at, una volta sola");
}

/// Takes the value of an option for a length of time.
Wrong takeTimeout(CommandLine& line, Rest& rest) {
    // The longest time that a timer can wait.
    constexpr double longest = std::numeric_limits<int>::max() / 1000;
    bool isNumber = false;
    const double seconds =
        rest.empty() ? 0 : QByteArray::fromStdString(take(rest)).toDouble(&isNumber);
    // Comparisons with NaN are always false.
    if (!isNumber || !(seconds > 0 && seconds <= longest))
        return localized("--timeout vuole un numero di secondi, maggiore di zero");
    line.timeout = std::chrono::milliseconds(std::llround(std::ceil(1000 * seconds)));
    return std::nullopt;
}

Wrong takeThen(CommandLine& line, Rest& rest) {
    const auto choice = rest.empty() ? std::nullopt : afterQuitFromRaw(rest.front());
    if (!choice) {
        std::vector<std::string_view> words;
        for (const AfterQuit one : allAfterQuits)
            words.push_back(rawValue(one));
        return wantsOneOf("--then", words);
    }
    rest.erase(rest.begin());
    line.then = *choice;
    return std::nullopt;
}

/// Takes the value of an option for a moment.
Wrong takeMoment(CommandLine& line, const std::string& option, Rest& rest) {
    if (!line.arguments.empty())
        return wantsMoment();
    if (rest.empty())
        return localized("%@ vuole un valore", option);
    line.arguments = {option.substr(2), take(rest)};
    return std::nullopt;
}

/// Takes the option at the front of `rest`; a text says what is wrong with it.
Wrong takeOption(CommandLine& line, Rest& rest) {
    const std::string option = take(rest);
    const auto has = [&](Option one) { return (line.command->options & one) != 0; };
    if (option == "--json" && has(Option::json))
        line.wantsJson = true;
    else if (option == "--yes" && has(Option::yes))
        line.isConfirmed = true;
    else if (option == "--no-wait" && has(Option::noWait))
        line.endsWithRun = true;
    else if (option == "--timeout" && has(Option::timeout))
        return takeTimeout(line, rest);
    else if ((option == "--minutes" || option == "--at") && has(Option::moment))
        return takeMoment(line, option, rest);
    else if (option == "--then" && has(Option::then))
        return takeThen(line, rest);
    else
        return localized("opzione sconosciuta: %@", option);
    return std::nullopt;
}

/// Names may begin with a hyphen, so all remaining words are names.
Wrong takeNames(CommandLine& line, Rest& rest) {
    const bool areMany = line.command->words == Words::names;
    for (const std::string& word : areMany ? rest : Rest{joined(rest, " ")}) {
        line.arguments.push_back(trimmed(word));
        if (!line.arguments.back().empty())
            continue;
        line.arguments.pop_back();
        if (line.command->words != Words::optionalName)
            return localized("%@ vuole il nome di un'app", line.command->control);
    }
    if (areMany && line.arguments.empty())
        return localized("%@ vuole il nome di un'app", line.command->control);
    rest.clear();
    return std::nullopt;
}

/// Takes the command's own words; a text says what is wrong with them.
Wrong takeWords(CommandLine& line, Rest& rest) {
    switch (line.command->words) {
    case Words::name:
    case Words::optionalName:
    case Words::names:
        return takeNames(line, rest);
    case Words::choice: {
        std::vector<std::string_view> words;
        for (const remote::Meaning& meaning : line.command->meanings)
            words.push_back(meaning.is);
        if (rest.size() != 1 || std::ranges::count(words, rest.front()) == 0)
            return wantsOneOf(line.command->control, words);
        line.arguments = std::exchange(rest, {});
        break;
    }
    case Words::minutes:
        line.arguments = {rest.empty() ? "10" : take(rest)};
        break;
    case Words::all:
        if (rest.empty())
            return localized("action vuole il nome di un'azione");
        line.arguments = std::exchange(rest, {});
        break;
    case Words::none:
        break;
    }
    return std::nullopt;
}

/// Adds whatever the verb needs besides the words.
Wrong complete(CommandLine& line) {
    const std::string then(rawValue(powerAction(line.then)));
    if (line.command->verb == Verb::schedule) {
        if (line.arguments.empty())
            return wantsMoment();
        line.arguments.push_back(then);
    }
    if (line.command->verb == Verb::quitAll)
        line.arguments = {then};
    return std::nullopt;
}

} // namespace

std::variant<CommandLine, std::string> parseCommandLine(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        return localized("manca il comando");
    Rest rest = arguments;
    const std::string word = take(rest);
    const auto meant = remote::controlCommands(word);
    if (meant.empty())
        return localized("comando sconosciuto: %@", word);
    if (meant.size() > 1) {
        std::vector<std::string_view> names;
        for (const remote::Command* command : meant)
            names.push_back(command->control);
        return localized("comando ambiguo: %@ (%@)", word, joined(names));
    }
    CommandLine line{.command = meant.front()};
    if (line.command->verb == Verb::schedule)
        line.then = AfterQuit::shutDown;
    if (const auto wrong = takeWords(line, rest))
        return *wrong;
    while (!rest.empty()) {
        if (const auto wrong = takeOption(line, rest))
            return *wrong;
    }
    if (const auto wrong = complete(line))
        return *wrong;
    return line;
}

} // namespace velmorquit
