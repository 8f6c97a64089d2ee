#include "Sentences.h"

#include "Model/AppTexts.h"
#include "Table.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace velmorquit {

namespace {

namespace changes = remote::changes;

template <class... Cases> struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases> Overloaded(Cases...) -> Overloaded<Cases...>;

std::string doneText(const remote::RunState& run, phases::Done done, const Formats& formats) {
    std::string text =
        done.closed == 1 ? localized("Finito: 1 app chiusa, %@ liberati", formats.bytes(done.freed))
                         : localized("Finito: %lld app chiuse, %@ liberati", done.closed,
                                     formats.bytes(done.freed));
    if (done.closed == 0)
        text = localized("Finito: nessuna app chiusa");
    return run.note && !run.note->empty() ? text + " · " + *run.note : text;
}

std::string backupFailedText(const remote::RunState& run, const std::string& reason,
                             const Formats& formats) {
    if (!run.continuesAt)
        return localized("Backup non riuscito: %@ (decidi tu: velmorctl backup continue o stop)",
                         reason);
    return localized("Backup non riuscito: %@ (vado avanti alle %@, o decidi tu: velmorctl backup "
                     "continue o stop)",
                     reason, formats.shortTime(*run.continuesAt));
}

std::string runText(const remote::RunState& run, const Formats& formats) {
    return std::visit(Overloaded{[](phases::Idle) { return localized("Pronta"); },
                                 [](phases::Quitting quitting) {
                                     return quitting.total == 1
                                                ? localized("Chiedo a 1 app di chiudersi")
                                                : localized("Chiedo a %lld app di chiudersi",
                                                            quitting.total);
                                 },
                                 [](phases::Waiting) { return localized("Aspetto una risposta"); },
                                 [](const phases::BackingUp& backup) {
                                     const double fraction = backup.fraction.value_or(-1);
                                     return fraction < 0 ? localized("Backup in corso")
                                                         : localized("Backup in corso: %lld%%",
                                                                     std::lround(100 * fraction));
                                 },
                                 [&](const phases::BackupFailed& failed) {
                                     return backupFailedText(run, failed.reason, formats);
                                 },
                                 [](phases::Ejecting) { return localized("Espello i dischi"); },
                                 [&](phases::Done done) { return doneText(run, done, formats); }},
                      run.phase);
}

/// Null if none is the same process.
const remote::Application* find(const std::vector<remote::Application>& applications,
                                const remote::Application& wanted) {
    const auto found =
        std::ranges::find(applications, wanted.process, &remote::Application::process);
    return found == applications.end() ? nullptr : &*found;
}

Table::Row rowFor(const remote::Application& application,
                  const std::vector<remote::Application>& stubborn, const Formats& formats) {
    std::string remark;
    if (const remote::Application* open = find(stubborn, application))
        remark = stayRemark(open->reason);
    else if (application.isExcluded)
        remark = localized("esclusa");
    const std::string id = application.id.value_or("");
    return {application.name, formats.bytes(application.memory),
            std::to_string(application.process), id.empty() ? "—" : id, remark};
}

std::string eventText(const Event& event) {
    if (const auto* backup = std::get_if<events::BackupFinished>(&event))
        return backup->success ? localized("Backup completato") : std::string();
    const auto* ejected = std::get_if<events::DisksEjected>(&event);
    if (!ejected)
        return {};
    if (!ejected->failed.empty())
        return localized("Ancora collegati: %@", joined(ejected->failed));
    return ejectedText(ejected->count);
}

/// The schedule, without a full stop.
std::string scheduleText(const remote::Schedule& schedule, const Formats& formats) {
    const std::string time = formats.shortTime(schedule.date);
    const std::string title = scheduleTitle(schedule.then);
    if (schedule.isAwaiting)
        return localized("La chiusura delle %@ (%@) aspetta una conferma: velmorctl confirm, "
                         "postpone o cancel",
                         time, title);
    return localized("Chiusura programmata alle %@ (%@)", time, title);
}

std::string stubbornText(const std::vector<remote::Application>& applications) {
    std::vector<std::string> names;
    for (const remote::Application& application : applications)
        names.push_back(nameWithReason(application.name, application.reason));
    if (names.empty())
        return {};
    return names.size() == 1 ? localized("Ancora aperta: %@", joined(names))
                             : localized("Ancora aperte: %@", joined(names));
}

/// The applications that can be reopened, as a line; empty during a run or without any.
std::string reopenableText(const remote::Status& status) {
    std::vector<std::string> names;
    for (const SavedApp& application : status.reopenable)
        names.push_back(application.name);
    if (names.empty() || isBusy(status.run.phase))
        return {};
    return localized("Da riaprire: %@", joined(names)) + '\n';
}

/// Shown in place of an empty table.
std::string emptyText(Sight sight) {
    const std::string unseen = unseenHelp(sight);
    return unseen.empty() ? localized("Nessuna app aperta") : unseen;
}

} // namespace

std::string statusText(const remote::Status& status, const Formats& formats) {
    std::vector<remote::Application> applications = status.applications;
    // An application that goes on without windows is no longer open, and yet the run waits for it.
    for (const remote::Application& application : status.stubborn) {
        if (!find(applications, application))
            applications.push_back(application);
    }
    std::string text = runText(status.run, formats) + '\n';
    if (status.schedule)
        text += scheduleText(*status.schedule, formats) + '\n';
    for (const std::string& said :
         {status.ending ? status.ending->text : std::string(), status.limits.value_or("")}) {
        if (!said.empty())
            text += said + '\n';
    }
    if (applications.empty())
        return text + emptyText(status.sight) + '\n' + reopenableText(status);
    Table table({Table::Align::left, Table::Align::right, Table::Align::right, Table::Align::left,
                 Table::Align::left});
    for (const remote::Application& application : applications)
        table.add(rowFor(application, status.stubborn, formats));
    const std::size_t count = applications.size();
    return text + (count == 1 ? localized("1 app aperta:") : localized("%lld app aperte:", count)) +
           '\n' + table.text() + reopenableText(status);
}

std::string actionsText(const std::vector<remote::PublishedAction>& actions) {
    Table table({Table::Align::left, Table::Align::left, Table::Align::left});
    for (const remote::PublishedAction& action : actions)
        table.add({action.name, action.title, joined(action.parameters)});
    return table.text();
}

std::string changeText(const remote::Change& change, const Formats& formats) {
    return std::visit(
        Overloaded{
            [&](const changes::Run& run) { return runText(run.state, formats); },
            [](const changes::Stubborn& those) { return stubbornText(those.applications); },
            [](const changes::Opened& one) {
                return localized("Aperta: %@", one.application.name);
            },
            [](const changes::Closed& one) {
                return localized("Chiusa: %@", one.application.name);
            },
            [](const changes::Windowless& one) {
                return localized("Senza finestre: %@", one.application.name);
            },
            [](const changes::Excluded& one) { return localized("Esclusa: %@", one.key); },
            [](const changes::Included& one) { return localized("Non più esclusa: %@", one.key); },
            [](const changes::Happened& happened) { return eventText(happened.event); },
            [&](const changes::Scheduled& scheduled) {
                return scheduled.schedule ? scheduleText(*scheduled.schedule, formats)
                                          : localized("Nessuna chiusura programmata");
            },
            [](const changes::Attention& attention) {
                return attention.seconds == 1
                           ? localized("Chiusura programmata tra 1 secondo")
                           : localized("Chiusura programmata tra %lld secondi", attention.seconds);
            },
            [](const changes::ScheduleNote& told) { return told.note; },
            [](const changes::EndingState& state) {
                return state.ending ? state.ending->text : std::string();
            }},
        change);
}

std::string confirmationQuestion(std::size_t count, AfterQuit then) {
    if (then == AfterQuit::shutDown) {
        return count == 1 ? localized("Chiudo 1 app e poi spengo? [s/N]")
                          : localized("Chiudo %lld app e poi spengo? [s/N]", count);
    }
    if (then == AfterQuit::restart) {
        return count == 1 ? localized("Chiudo 1 app e poi riavvio? [s/N]")
                          : localized("Chiudo %lld app e poi riavvio? [s/N]", count);
    }
    return count == 1 ? localized("Chiudo 1 app e poi chiudo la sessione? [s/N]")
                      : localized("Chiudo %lld app e poi chiudo la sessione? [s/N]", count);
}

} // namespace velmorquit
