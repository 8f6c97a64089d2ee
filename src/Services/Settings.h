#pragma once

#include "Loop/Published.h"
#include "Model/PowerAction.h"
#include "Model/SavedApp.h"
#include "Services/AppLanguage.h"
#include "Texts/Language.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmorquit {

class Preferences;
class Settings;

/// What the settings have in common, whatever their types.
class AnySetting {
public:
    AnySetting(const AnySetting&) = delete;
    AnySetting& operator=(const AnySetting&) = delete;
    virtual ~AnySetting() = default;

    /// Takes over what is stored by now.
    virtual void takeOver() = 0;

protected:
    AnySetting() = default;
};

/// A preference as a value of its type. It is what its default is while nothing is stored under its
/// key, or what is no such value. An optional one that is none is not stored.
template <class T> class Setting final : public AnySetting {
public:
    Setting(Settings& settings, std::string_view key, T initial);

    [[nodiscard]] const T& get() const { return value_; }
    operator const T&() const { return value_; }
    const T* operator->() const { return &value_.get(); }

    /// As `Published` has it.
    [[nodiscard]] Handle subscribe(std::function<void()> told) const {
        return value_.subscribe(std::move(told));
    }

    /// Keeps `value`, as `Preferences::set` does. What it is already is not stored again.
    void store(T value);

    void takeOver() override;

private:
    Preferences& preferences_;
    std::string_view key_;
    T initial_;
    Published<T, Setting> value_;
};

/// All that is kept across starts, with keys, types and defaults, over the desktop's preferences.
/// What another program stores is taken over when the preferences tell.
class Settings {
    // In this order: the settings are made with them.
    MainLoop& loop_;
    Preferences& preferences_;
    std::vector<AnySetting*> all_;
    template <class T> friend class Setting;

public:
    Settings(MainLoop& loop, Preferences& preferences);

    /// Takes over what another program has stored by now, instead of in a moment.
    void refresh();

    /// Exclusion keys of the applications that a run leaves alone; none until the user has chosen.
    Setting<std::optional<std::set<std::string>>> excludedApps{*this, "excludedApps", std::nullopt};
    Setting<PowerAction> afterQuit{*this, "afterQuit", PowerAction::none};
    Setting<bool> backupFirst{*this, "backupFirst", false};
    Setting<bool> ejectDrives{*this, "ejectDrives", false};
    Setting<bool> confirmScheduled{*this, "confirmScheduled", true};
    /// What the last run that closed anything has closed, and when.
    Setting<std::optional<std::vector<SavedApp>>> lastSession{*this, "lastSession", std::nullopt};
    Setting<std::optional<WallTime>> lastSessionDate{*this, "lastSessionDate", std::nullopt};

    Setting<bool> clickIconQuitsAll{*this, "clickIconQuitsAll", false};
    /// The panel has opened by itself once, to be seen.
    Setting<bool> didShowWelcome{*this, "didShowWelcome", false};
    /// The choice holds from the next start on.
    Setting<AppLanguage> language{*this, languagePreference, AppLanguage::system};

private:
    Handle changes_;
};

} // namespace velmorquit
