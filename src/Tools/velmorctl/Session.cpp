#include "Session.h"

#include "Sentences.h"
#include "Terminal.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <QCoreApplication>
#include <QTime>

#include <utility>

namespace velmorquit {

using remote::Reply;
using remote::Verb;

Session::Session(CommandLine line, const Formats& formats, ForegroundJob job)
    : line_(std::move(line)), formats_(formats), job_(std::move(job)),
      program_(line_.command->startsProgram, &Session::fail),
      run_(line_, formats_, job_, program_, &Session::fail, &Session::end) {}

void Session::start() {
    if (!program_.isReachable())
        fail(localized("nessun bus di sessione (DBUS_SESSION_BUS_ADDRESS)."),
             ExitStatus::notRunning);
    else if (line_.command->reply == Reply::own)
        carryOutOwn();
    else
        carryOut();
}

void Session::carryOutOwn() {
    switch (line_.command->verb) {
    case Verb::watch:
        watch();
        program_.perform(Verb::status, {}, [](const Program::Said&) {});
        break;
    case Verb::eject:
        watch();
        program_.perform(Verb::eject, {}, [](const Program::Said&) {});
        break;
    case Verb::quitAll:
        run_.start([this] { watch(); });
        break;
    case Verb::anyway:
        askThenEndAnyway();
        break;
    case Verb::show:
        // A program that has nothing to show answers the activation as well.
        program_.activate([this] {
            program_.perform(Verb::status, {},
                             [](const Program::Said&) { end(ExitStatus::success); });
        });
        break;
    default:
        carryOut();
    }
}

void Session::carryOut() {
    program_.perform(line_.command->verb, line_.arguments, [this](const Program::Said& said) {
        if (line_.command->reply == Reply::silent)
            report(said);
        else
            relay(said);
    });
}

void Session::report(const Program::Said& said) {
    const remote::Answer answer = remote::decodeAnswer(said.json);
    if (answer.refused.empty())
        end(ExitStatus::success);
    else
        fail(localized("il sistema non permette di forzare: %@.", joined(answer.refused)),
             ExitStatus::failure);
}

void Session::relay(const Program::Said& said) {
    const remote::Answer answer = remote::decodeAnswer(said.json);
    if (line_.wantsJson)
        Terminal::printJson(said.text);
    else if (line_.command->verb == Verb::status)
        Terminal::print(statusText(remote::decodeStatus(said.json), formats_));
    else if (line_.command->verb == Verb::actions)
        Terminal::print(actionsText(remote::decodeActions(said.json)));
    else
        Terminal::print(answer.text + '\n');
    end(answer.notAsked.empty() ? ExitStatus::success : ExitStatus::failure);
}

// The question can't be skipped: whatever is lost by it is lost for good.
void Session::askThenEndAnyway() {
    program_.perform(Verb::status, {}, [this](const Program::Said& said) {
        const auto ending = remote::decodeStatus(said.json).ending;
        if (!ending || !ending->list) {
            fail(localized("non c'è niente su cui passare sopra."), ExitStatus::failure);
            return;
        }
        Terminal::print(ending->text + '\n');
        if (!Terminal::hasUser())
            fail(localized("senza un terminale non posso chiedere conferma: non faccio niente."),
                 ExitStatus::usage);
        else if (Terminal::isAgreed(ending->question + " [s/N]"))
            program_.perform(Verb::anyway, {*ending->list},
                             [this](const Program::Said& answer) { report(answer); });
        else
            fail(localized("annullato: non faccio niente."), ExitStatus::failure);
    });
}

void Session::watch() {
    program_.follow([this](const Program::Said& change) { hear(change); });
}

void Session::hear(const Program::Said& said) {
    const auto change = remote::decodeChange(said.json);
    const auto* run = change ? std::get_if<remote::changes::Run>(&*change) : nullptr;
    if (run && is<phases::Quitting>(run->state.phase) && job_.isInFront()) {
        program_.perform(Verb::status, {}, [this](const Program::Said& now) {
            leaveTerminal(job_, remote::decodeStatus(now.json));
        });
    }
    if (line_.wantsJson) {
        Terminal::printJson(said.text);
    } else if (!change) {
        return;
    } else if (line_.command->verb == Verb::quitAll) {
        run_.hear(*change);
    } else if (line_.command->verb == Verb::eject) {
        hearEjected(*change);
    } else if (const std::string text = changeText(*change, formats_); !text.empty()) {
        const std::string now = QTime::currentTime().toString("HH:mm:ss.zzz").toStdString();
        Terminal::print(now + "  " + text + '\n');
    }
}

void Session::hearEjected(const remote::Change& change) {
    const auto* happened = std::get_if<remote::changes::Happened>(&change);
    const auto* ejected = happened ? std::get_if<events::DisksEjected>(&happened->event) : nullptr;
    if (!ejected)
        return;
    Terminal::print(changeText(change, formats_) + '\n');
    end(ejected->failed.empty() ? ExitStatus::success : ExitStatus::failure);
}

void Session::fail(const std::string& why, ExitStatus status) {
    Terminal::complain(why);
    end(status);
}

void Session::end(ExitStatus status) { QCoreApplication::exit(static_cast<int>(status)); }

} // namespace velmorquit
