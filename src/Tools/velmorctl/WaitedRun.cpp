#include "WaitedRun.h"

#include "Sentences.h"
#include "Terminal.h"
#include "Texts/Localized.h"

#include <QTimer>

#include <algorithm>
#include <map>
#include <utility>

namespace velmorquit {

using remote::Verb;

namespace {

std::size_t countToQuit(const remote::Status& status) {
    return static_cast<std::size_t>(
        std::ranges::count(status.applications, false, &remote::Application::isExcluded));
}

} // namespace

void leaveTerminal(ForegroundJob& job, const remote::Status& status) {
    std::map<pid_t, bool> isExcluded;
    for (const remote::Application& application : status.applications)
        isExcluded[application.process] = application.isExcluded;
    const auto terminal = std::ranges::find_if(
        job.ancestors(), [&](pid_t ancestor) { return isExcluded.contains(ancestor); });
    if (terminal == job.ancestors().end() || isExcluded.at(*terminal) || !job.isInFront())
        return;
    Terminal::complain(
        localized("anche questo terminale viene chiuso: continuo in secondo piano."));
    job.leave();
}

WaitedRun::WaitedRun(const CommandLine& line, const Formats& formats, ForegroundJob& job,
                     Program& program, Program::Fail fail, End end)
    : line_(line), job_(job), program_(program), fail_(std::move(fail)), end_(std::move(end)),
      run_(line, formats) {}

void WaitedRun::start(std::function<void()> agreed) {
    agreed_ = std::move(agreed);
    if (line_.then == AfterQuit::nothing || line_.isConfirmed) {
        quitAll();
        return;
    }
    if (!Terminal::hasUser()) {
        fail_(localized("senza un terminale serve --yes: non faccio niente."), ExitStatus::usage);
        return;
    }
    program_.perform(Verb::status, {}, [this](const Program::Said& said) {
        const remote::Status status = remote::decodeStatus(said.json);
        if (status.limits && !status.limits->empty())
            Terminal::print(*status.limits + '\n');
        if (Terminal::isAgreed(confirmationQuestion(countToQuit(status), line_.then)))
            quitAll();
        else
            fail_(localized("annullato: non chiudo niente."), ExitStatus::failure);
    });
}

void WaitedRun::quitAll() {
    agreed_();
    if (line_.timeout) {
        QTimer::singleShot(*line_.timeout, &program_, [this] {
            fail_(localized("il tempo è scaduto: non aspetto più, e la chiusura va avanti."),
                  ExitStatus::timedOut);
        });
    }
    interruption_.emplace([this] {
        fail_(localized("non aspetto più, e la chiusura va avanti: velmorctl leave la ferma, "
                        "velmorctl cancel rinuncia a spegnere, riavviare o uscire."),
              ExitStatus::interrupted);
    });
    if (!job_.isInFront()) {
        begin();
        return;
    }
    program_.perform(Verb::status, {}, [this](const Program::Said& said) {
        const remote::Status status = remote::decodeStatus(said.json);
        // During another run this one is refused.
        if (!isBusy(status.run.phase))
            leaveTerminal(job_, status);
        begin();
    });
}

void WaitedRun::begin() {
    program_.perform(Verb::quitAll, line_.arguments, [this](const Program::Said& said) {
        run_.begin(*remote::decodeAnswer(said.json).asked);
    });
}

void WaitedRun::hear(const remote::Change& change) {
    const bool wasEnding = run_.isEnding();
    if (const auto status = run_.hear(change)) {
        end_(*status);
        return;
    }
    if (wasEnding || !run_.isEnding())
        return;
    // The action after the run may have been given up or reported before the result.
    program_.perform(Verb::status, {}, [this](const Program::Said& said) {
        if (const auto status = run_.hearEnding(remote::decodeStatus(said.json).ending))
            end_(*status);
    });
}

} // namespace velmorquit
