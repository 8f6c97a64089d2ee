#pragma once

#include "Linux/Loop/Paced.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/Preferences.h"
#include "Platform/SystemLog.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace velmorquit {

class FileWatch;

/// The preferences as a property list, held in memory and written whole with every change.
///
/// Beside the file (where a symbolic link leads, if it is one):
/// - `<file>~`: an earlier state of it, if possible one that is known to have reached the disk: it
///   survives what the file itself may not, a power cut
/// - `<file>.damaged-<UTC time>`: what was found in its place and is no property list
/// - `<file>.new`, `<file>~.new`: left by a process that was killed; never read, written over
///
/// A change is in the file when `set` returns, and there is a complete file at any moment. Syncing
/// with the disk is done in the background. A change that can't be written is kept in memory, told
/// in the log once until writing succeeds again, and written with the next change.
///
/// Start: a damaged file is set aside and `<file>~` taken and written in its place. While the file
/// can't be read it is left alone, `<file>~` is read for the time being and changes live in memory;
/// they join the file when it can be read. A missing file means that the user wants a new start,
/// also when there is a `<file>~`: that one is left for those who didn't, and the log says so.
///
/// Other programs' edits are taken over when they are made (for a directory that exists), at the
/// latest before the next write; changes of ours that are not written yet prevail. A damaged edit
/// is set aside and the file written again; a removed file is written again with the next change.
/// At most 20 are set aside; the next one is left as it is and counts as one that can't be read, as
/// does one of more than 4 MiB.
///
/// For the main thread, with a QCoreApplication.
class PropertyListPreferences final : public Preferences {
public:
    PropertyListPreferences(MainLoop& loop, SystemLog& log, std::filesystem::path file);
    ~PropertyListPreferences() override;

    [[nodiscard]] std::optional<Value> object(std::string_view key) const override;
    void set(std::string_view key, Value value) override { change(key, std::move(value)); }
    void remove(std::string_view key) override { change(key, std::nullopt); }
    void refresh() override { noticeEdit(); }
    [[nodiscard]] Handle observe(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

    /// One state of a file. Any write by anybody gives another one.
    struct Identity {
        explicit Identity(const struct stat& status)
            : device(status.st_dev), inode(status.st_ino), size(status.st_size),
              modified(status.st_mtim.tv_sec * std::int64_t{1'000'000'000} +
                       status.st_mtim.tv_nsec) {}
        friend bool operator==(const Identity&, const Identity&) = default;

        dev_t device;
        ino_t inode;
        off_t size;
        std::int64_t modified; ///< in ns since 1970
    };

private:
    struct Contents;
    struct Sync;

    void start();
    void change(std::string_view key, std::optional<Value> value);
    void noticeEdit();
    bool catchUp();
    void adopt(Contents contents);
    [[nodiscard]] std::error_code setAside(const std::filesystem::path& file);
    void reportDamage(std::string_view consequence);
    void reportOnce(bool& isTold, std::string_view what, std::error_code error);

    void write();
    std::error_code replace(const std::filesystem::path& file, std::string_view list);
    void keepPrevious(const std::filesystem::path& file) const;
    void syncNext();

    MainLoop& loop_;
    SystemLog& log_;
    std::filesystem::path file_;
    Value::Dictionary values_;
    Subscribers observers_;
    Paced edits_;
    std::unique_ptr<FileWatch> watch_;
    int setAside_ = 0; ///< how many damaged files since the start

    /// What was changed here and is not in the file yet; none for a removed key.
    std::map<std::string, std::optional<Value>, std::less<>> unwritten_;
    bool isWriteOwed_ = false;
    /// What `values_` was last read from or written to.
    std::optional<Identity> known_;
    /// What is known to have reached the disk.
    std::optional<Identity> onDisk_;
    bool isReadFailureTold_ = false;
    bool isWriteFailureTold_ = false;

    std::shared_ptr<Sync> nextSync_;
    bool isSyncing_ = false;
    Handle syncing_;
};

} // namespace velmorquit
