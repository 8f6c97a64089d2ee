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
/// Beside the file (or, if it is a symbolic link, beside its target):
/// - `<file>~`: an earlier state, if possible one known to have reached the disk, which survives a
///   power cut that the file itself may not
/// - `<file>.damaged-<UTC time>`: content found in its place that is no property list
/// - `<file>.new`, `<file>~.new`: left by a process that was killed; never read, but overwritten
///
/// A change is in the file when `set` returns, and there is a complete file at any moment. Syncing
/// with the disk is done in the background. A change that can't be written is kept in memory,
/// logged once until writing succeeds again, and written with the next change.
///
/// At the start: a damaged file is set aside, and `<file>~` is loaded and written in its place. A
/// file that can't be read is left alone; `<file>~` is read meanwhile and changes are kept in
/// memory until they can join the file. A missing file means that the user wants a fresh start,
/// even if there is a `<file>~`: that is kept for users who didn't, and the log says so.
///
/// Edits by other programs are taken over when they are made (if the directory exists), at the
/// latest before the next write; our own unwritten changes prevail. A damaged edit is set aside and
/// the file written again; a removed file is written again with the next change. At most 20 files
/// are set aside; the next damaged one is left alone and counts as unreadable, as does a file of
/// more than 4 MiB.
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

    /// One state of a file. Every write changes it.
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
    int setAside_ = 0; ///< number of damaged files set aside since the start

    /// Changes made here that are not in the file yet; none for a removed key.
    std::map<std::string, std::optional<Value>, std::less<>> unwritten_;
    bool isWriteOwed_ = false;
    /// The state that `values_` was last read from or written to.
    std::optional<Identity> known_;
    /// The state known to have reached the disk.
    std::optional<Identity> onDisk_;
    bool isReadFailureTold_ = false;
    bool isWriteFailureTold_ = false;

    std::shared_ptr<Sync> nextSync_;
    bool isSyncing_ = false;
    Handle syncing_;
};

} // namespace velmorquit
