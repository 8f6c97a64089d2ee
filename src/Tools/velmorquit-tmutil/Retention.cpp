#include "Retention.h"

#include "ResticAnswers.h"

#include <algorithm>

namespace velmorquit::Retention {

namespace {

bool isAmong(const std::vector<std::string>& ids, const std::string& beginning) {
    return !beginning.empty() && std::ranges::any_of(ids, [&](const std::string& id) {
        return id.starts_with(beginning);
    });
}

} // namespace

std::optional<Problem> apply(const Repository& repository, const Destination& destination) {
    std::vector<std::string> arguments{"forget", "--json", "--prune",
                                       std::string("--tag=") + Repository::tag,
                                       "--host=" + destination.host};
    // The user of another account may back up here too, under the same name of the computer.
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
    const ResticEnd end = repository.run(std::move(arguments));
    const auto removed = ResticAnswers::removed(end.output);
    // Also when clearing up after that has failed: they are gone.
    const auto problem = Settings::change(destination.id, [&](Destination& recorded) {
        std::erase_if(recorded.snapshots, [&](const SnapshotRecord& snapshot) {
            return isAmong(removed, snapshot.id);
        });
    });
    return end.isGood() ? problem : repository.problem(end);
}

} // namespace velmorquit::Retention
