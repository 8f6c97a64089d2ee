#include "Settings.h"

#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Codecs/SmallFile.h"
#include "Folders.h"
#include "Linux/Files/PrivateFiles.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <functional>

#include <fcntl.h>
#include <sys/file.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

template <class Type> const Type* entry(const Value::Dictionary& fields, const char* key) {
    const auto found = fields.find(key);
    return found == fields.end() ? nullptr : found->second.as<Type>();
}

std::string text(const Value::Dictionary& fields, const char* key) {
    const auto* found = entry<std::string>(fields, key);
    return found ? *found : std::string();
}

std::int64_t number(const Value::Dictionary& fields, const char* key) {
    const auto* found = entry<std::int64_t>(fields, key);
    return found ? std::max<std::int64_t>(*found, 0) : 0;
}

template <class Type> std::vector<Type> elements(const Value::Dictionary& fields, const char* key) {
    std::vector<Type> list;
    if (const auto* array = entry<Value::Array>(fields, key)) {
        for (const Value& element : *array) {
            if (const auto* value = element.as<Type>())
                list.push_back(*value);
        }
    }
    return list;
}

Value::Array array(const std::vector<std::string>& texts) { return {texts.begin(), texts.end()}; }

Destination destinationOf(const Value::Dictionary& fields) {
    Destination destination{.path = text(fields, "Path"),
                            .id = text(fields, "Repository"),
                            .host = text(fields, "Host"),
                            .passwordFile = text(fields, "PasswordFile"),
                            .sources = elements<std::string>(fields, "Sources"),
                            .excludes = elements<std::string>(fields, "Excludes"),
                            .keep = {.last = number(fields, "KeepLast"),
                                     .daily = number(fields, "KeepDaily"),
                                     .weekly = number(fields, "KeepWeekly"),
                                     .monthly = number(fields, "KeepMonthly")},
                            .snapshots = {}};
    auto ids = elements<std::string>(fields, "SnapshotIds");
    const auto dates = elements<WallTime>(fields, "SnapshotDates");
    ids.resize(dates.size());
    for (std::size_t index = 0; index < dates.size(); ++index)
        destination.snapshots.push_back({ids[index], dates[index]});
    return destination;
}

Value valueOf(const Destination& destination) {
    Value::Array ids;
    Value::Array dates;
    for (const SnapshotRecord& snapshot : destination.snapshots) {
        ids.emplace_back(snapshot.id);
        dates.emplace_back(snapshot.date);
    }
    return Value::Dictionary{{"Path", destination.path},
                             {"Repository", destination.id},
                             {"Host", destination.host},
                             {"PasswordFile", destination.passwordFile},
                             {"Sources", array(destination.sources)},
                             {"Excludes", array(destination.excludes)},
                             {"KeepLast", destination.keep.last},
                             {"KeepDaily", destination.keep.daily},
                             {"KeepWeekly", destination.keep.weekly},
                             {"KeepMonthly", destination.keep.monthly},
                             {"SnapshotIds", ids},
                             {"SnapshotDates", dates}};
}

/// Held while the file is read and written again.
Descriptor lockFile() {
    const fs::path folder = Folders::runtime();
    if (PrivateFiles::makeFolder(folder))
        return Descriptor(-1);
    Descriptor file = PrivateFiles::openLock(folder / "settings.lock");
    if (file)
        ::flock(file.get(), LOCK_EX);
    return file;
}

} // namespace

std::optional<WallTime> Destination::latest() const {
    std::optional<WallTime> latest;
    for (const SnapshotRecord& snapshot : snapshots)
        latest = std::max(latest, std::optional(snapshot.date));
    return latest;
}

std::optional<std::vector<Destination>> Settings::decode(const std::string& content) {
    const auto list = PropertyList::decode(content);
    const auto* root = list ? list->as<Value::Dictionary>() : nullptr;
    const auto* places = root ? entry<Value::Array>(*root, "Destinations") : nullptr;
    if (!places)
        return std::nullopt;
    std::vector<Destination> destinations;
    for (const Value& place : *places) {
        const auto* fields = place.as<Value::Dictionary>();
        if (!fields)
            return std::nullopt;
        destinations.push_back(destinationOf(*fields));
        const Destination& last = destinations.back();
        if (last.path.empty() || last.id.empty() || last.passwordFile.empty())
            return std::nullopt;
    }
    return destinations;
}

std::string Settings::encode(const std::vector<Destination>& destinations) {
    Value::Array places;
    for (const Destination& destination : destinations)
        places.push_back(valueOf(destination));
    return PropertyList::encode(Value::Dictionary{{"Destinations", std::move(places)}});
}

Outcome<std::vector<Destination>> Settings::load() {
    const fs::path file = defaultBackupDestinationsFile();
    std::error_code error;
    if (fs::status(file, error).type() == fs::file_type::not_found)
        return std::vector<Destination>();
    const auto content = readSmallFile(file);
    if (!content)
        return Problem{
            localized("Non posso leggere il file delle destinazioni %@.", file.string())};
    auto destinations = decode(*content);
    if (!destinations)
        return Problem{localized("Il file delle destinazioni %@ è danneggiato. Resta com’è: "
                                 "spostalo e ripeti setup, oppure ripristinalo.",
                                 file.string())};
    return *std::move(destinations);
}

std::optional<Problem>
Settings::change(const std::function<void(std::vector<Destination>&)>& edit) {
    const fs::path file = defaultBackupDestinationsFile();
    const Descriptor lock = lockFile();
    auto loaded = load();
    if (const auto* problem = problemOf(loaded))
        return *problem;
    auto& destinations = std::get<std::vector<Destination>>(loaded);
    edit(destinations);
    std::string list = encode(destinations);
    // A list that could not be read back is not written. Its snapshots are only a note and may be
    // shortened.
    if (!decode(list)) {
        constexpr std::size_t kept = 1000;
        for (Destination& destination : destinations) {
            auto& snapshots = destination.snapshots;
            std::ranges::sort(snapshots, std::greater(), &SnapshotRecord::date);
            snapshots.resize(std::min(snapshots.size(), kept));
            std::ranges::reverse(snapshots);
        }
        list = encode(destinations);
    }
    if (!decode(list) || PrivateFiles::makeFolder(file.parent_path()) ||
        PrivateFiles::replace(file, list, PrivateFiles::Durability::onDisk))
        return Problem{
            localized("Non posso scrivere il file delle destinazioni %@.", file.string())};
    return std::nullopt;
}

Outcome<std::vector<Destination>> Settings::loadSome() {
    auto loaded = load();
    const auto* destinations = std::get_if<std::vector<Destination>>(&loaded);
    if (destinations && destinations->empty())
        return Problem{localized("Non c’è ancora una destinazione per i backup: "
                                 "velmorquit-tmutil setup CARTELLA")};
    return loaded;
}

std::optional<Problem> Settings::change(const std::string& id,
                                        const std::function<void(Destination&)>& edit) {
    return change([&](std::vector<Destination>& destinations) {
        for (Destination& destination : destinations) {
            if (destination.id == id)
                edit(destination);
        }
    });
}

} // namespace velmorquit::tmutil
