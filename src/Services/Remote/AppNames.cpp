#include "Services/Remote/AppNames.h"

#include "Remote/Shortened.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <algorithm>

namespace velmorquit::AppNames {

using remote::isSameName;
using remote::isShortFor;

namespace {

template <class Fits> std::vector<OpenApp> matching(const std::vector<OpenApp>& apps, Fits fits) {
    std::vector<OpenApp> found;
    std::ranges::copy_if(apps, std::back_inserter(found), fits);
    return found;
}

} // namespace

std::vector<OpenApp> called(const std::string& name, const std::vector<OpenApp>& apps) {
    auto found = matching(apps, [&](const OpenApp& app) { return app.exclusionKey() == name; });
    if (found.empty())
        found = matching(apps, [&](const OpenApp& app) { return isSameName(app.name, name); });
    if (found.empty())
        found = matching(apps,
                         [&](const OpenApp& app) { return isSameName(app.exclusionKey(), name); });
    if (found.empty())
        found = matching(apps, [&](const OpenApp& app) { return std::to_string(app.id) == name; });
    return found;
}

std::vector<OpenApp> named(const std::string& name, const std::vector<OpenApp>& apps) {
    auto found = called(name, apps);
    if (found.empty())
        found = matching(apps, [&](const OpenApp& app) { return isShortFor(name, app.name); });
    return found;
}

std::variant<std::vector<OpenApp>, std::string> one(const std::string& name,
                                                    std::vector<OpenApp> found) {
    const bool areSame = std::ranges::all_of(found, [&](const OpenApp& app) {
        return app.exclusionKey() == found.front().exclusionKey();
    });
    if (areSame)
        return found;
    return areCalledAlike(found) ? severalAreCalled(name) : severalBegin(name, list(found));
}

bool areCalledAlike(const std::vector<OpenApp>& apps) {
    return std::ranges::all_of(
        apps, [&](const OpenApp& app) { return isSameName(app.name, apps.front().name); });
}

std::string list(const std::vector<OpenApp>& apps) {
    std::vector<std::string> names;
    for (const OpenApp& app : apps) {
        if (std::ranges::find(names, app.name) == names.end())
            names.push_back(app.name);
    }
    return joined(names);
}

std::string severalBegin(const std::string& name, const std::string& list) {
    return localized("Più app cominciano con «%@»: %@.", name, list);
}

std::string severalAreCalled(const std::string& name) {
    return localized("Più app si chiamano «%@»: indica l'id di una.", name);
}

std::string noneIsOpen(const std::string& name) {
    return localized("Nessuna app aperta si chiama «%@».", name);
}

} // namespace velmorquit::AppNames
