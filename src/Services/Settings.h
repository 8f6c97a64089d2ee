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

/// The common base of all settings, whatever their types.
class AnySetting {
public:
    AnySetting(const AnySetting&) = delete;
    AnySetting& operator=(const AnySetting&) = delete;
    virtual ~AnySetting() = default;

    /// Takes over the stored value.
    virtual void takeOver() = 0;

protected:
    AnySetting() = default;
};

/// A preference as a value of its type. It has its default while nothing, or nothing valid, is
/// stored under its key. An optional that is none is not stored.
template <class T> class Setting final : public AnySetting {
public:
    Setting(Settings& settings, std::string_view key, T initial);

    [[nodiscard]] const T& get() const { return value_; }
    operator const T&() const { return value_; }
    const T* operator->() const { return &value_.get(); }

    /// See `Published`.
    [[nodiscard]] Handle subscribe(std::function<void()> told) const {
        return value_.subscribe(std::move(told));
    }

    /// Keeps `value`, as `Preferences::set` does; an unchanged value is not stored again.
    void store(T value);

    void takeOver() override;

private:
    Preferences& preferences_;
    std::string_view key_;
    T initial_;
    Published<T, Setting> value_;
};

/// Everything that is kept across starts, with keys, types and defaults, over the desktop's
/// preferences. Values stored by other programs are taken over as soon as the preferences tell.
class Settings {
    // First, since the settings below are made with them.
    MainLoop& loop_;
    Preferences& preferences_;
    std::vector<AnySetting*> all_;
    template <class T> friend class Setting;

public:
    Settings(MainLoop& loop, Preferences& preferences);

    /// Takes over at once what other programs have stored.
    void refresh();

    /// Exclusion keys of the applications that a run leaves alone; none until the user has chosen.
    Setting<std::optional<std::set<std::string>>> excludedApps{*this, "excludedApps", std::nullopt};
    Setting<PowerAction> afterQuit{*this, "afterQuit", PowerAction::none};
    Setting<bool> backupFirst{*this, "backupFirst", false};
    Setting<bool> ejectDrives{*this, "ejectDrives", false};
    Setting<bool> confirmScheduled{*this, "confirmScheduled", true};
    /// The applications closed by the last run that closed any, and when.
    Setting<std::optional<std::vector<SavedApp>>> lastSession{*this, "lastSession", std::nullopt};
    Setting<std::optional<WallTime>> lastSessionDate{*this, "lastSessionDate", std::nullopt};

    Setting<bool> clickIconQuitsAll{*this, "clickIconQuitsAll", false};
    /// The panel has introduced itself once by opening unasked.
    Setting<bool> didShowWelcome{*this, "didShowWelcome", false};
    /// Takes effect at the next start.
    Setting<AppLanguage> language{*this, languagePreference, AppLanguage::system};

private:
    Handle changes_;
};

} // namespace velmorquit
