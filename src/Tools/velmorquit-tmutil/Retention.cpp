#include "Retention.h"

#include "ResticAnswers.h"

#include <algorithm>

namespace velmorquit::tmutil::Retention {

namespace {

bool isAmong(const std::vector<std::string>& ids, const std::string& beginning) {
    return !beginning.empty() && std::ranges::any_of(ids, [&](const std::string& id) {
        return id.starts_with(beginning);
    });
}

} // namespace

std::vector<std::string> arguments(const Destination& destination) {
    std::vector<std::string> arguments{"forget", "--json", "--prune",
                                       std::string("--tag=") + Repository::tag,
                                       "--host=" + destination.host};
    // Another account may back up here as well, under the same computer name.
    for (const std::string& source : destination.sources)
        arguments.push_back("--path=" + source);
    const auto add = [&](const char* option, std::int64_t count) {
        if (count > 0)
            arguments.push_back(option + std::to_string(count));
    };
    add("--keep-last=", destination.keep.last);
    add("--keep-daily=", destination.keep.daily);
    add("--keep-weekly=", destination.keep.weekly);
    add("--keep-monthly=", destination.keep.monthly);
    return arguments;
}

void strike(Destination& recorded, const std::vector<std::string>& removed) {
    std::erase_if(recorded.snapshots,
                  [&](const SnapshotRecord& snapshot) { return isAmong(removed, snapshot.id); });
}

std::optional<Problem> apply(const Repository& repository, const Destination& destination) {
    const ResticEnd end = repository.run(arguments(destination));
    const auto removed = ResticAnswers::removed(end.output);
    // Even if the clean-up after the removal has failed: the snapshots are gone.
    const auto problem =
        Settings::change(destination.id, [&](Destination& recorded) { strike(recorded, removed); });
    return end.isGood() ? problem : repository.problem(end);
}

} // namespace velmorquit::tmutil::Retention
