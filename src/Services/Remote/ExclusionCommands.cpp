#include "Services/Remote/ExclusionCommands.h"

#include "Remote/Shortened.h"
#include "Services/Remote/Answers.h"
#include "Services/Remote/AppNames.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

using remote::done;
using remote::refused;

namespace {

remote::Json told(const std::string& key, bool isExcluded) {
    return {{"key", key}, {"excluded", isExcluded}};
}

} // namespace

RemoteAnswer ExclusionCommands::exclude(const std::string& name) {
    const auto apps = AppNames::named(name, controller_.apps);
    return apps.empty() ? refused(AppNames::noneIsOpen(name)) : set(name, apps, true);
}

// A stored key takes precedence over an application with that name.
RemoteAnswer ExclusionCommands::include(const std::string& name) {
    if (controller_.includeAgain(name))
        return done(told(name, false));
    const auto apps = AppNames::called(name, controller_.apps);
    return apps.empty() ? includeShown(name) : set(name, apps, false);
}

RemoteAnswer ExclusionCommands::set(const std::string& name, const std::vector<OpenApp>& apps,
                                    bool isExcluded) {
    const auto found = AppNames::one(name, apps);
    if (const auto* several = std::get_if<std::string>(&found))
        return refused(*several);
    if (controller_.isExcluded(apps.front()) != isExcluded)
        controller_.toggleExclusion(apps.front());
    return done(told(apps.front().exclusionKey(), isExcluded));
}

/// Users know an application that isn't running by the name that was shown; the name of a running
/// one may be shortened as long as no other exclusion begins the same way.
RemoteAnswer ExclusionCommands::includeShown(const std::string& name) {
    const auto isOpenAs = [&](const std::string& key, auto fits) {
        return std::ranges::any_of(controller_.apps.get(), [&](const OpenApp& app) {
            return app.exclusionKey() == key && fits(app.name);
        });
    };
    const auto matching = [&](auto fits) {
        std::vector<std::string> keys;
        for (const std::string& key : controller_.excluded.get()) {
            if (fits(shownName(key)) || isOpenAs(key, fits))
                keys.push_back(key);
        }
        return keys;
    };
    auto keys = matching([&](const std::string& shown) { return shown == name; });
    if (keys.size() > 1)
        return refused(AppNames::severalAreCalled(name));
    if (keys.empty())
        keys = matching([&](const std::string& shown) { return remote::isShortFor(name, shown); });
    if (keys.size() > 1) {
        std::string list;
        for (const std::string& key : keys)
            list += (list.empty() ? "" : ", ") + shownName(key);
        return refused(AppNames::severalBegin(name, list));
    }
    if (keys.empty() || !controller_.includeAgain(keys.front()))
        return refused(AppNames::noneIsOpen(name));
    return done(told(keys.front(), false));
}

} // namespace velmorquit
