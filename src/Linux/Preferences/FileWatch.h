#pragma once

#include "Linux/Files/Descriptor.h"

#include <QSocketNotifier>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace velmorquit {

/// Reports what other programs do to files of certain names. For the main thread, with a
/// QCoreApplication; silent where the system can't watch any more.
class FileWatch {
public:
    explicit FileWatch(std::function<void()> told);

    /// Adding a file again is no error; a directory that doesn't exist isn't watched. A new file is
    /// reported only when it has been written.
    void add(const std::filesystem::path& file);

private:
    bool readEvents();

    Descriptor descriptor_;
    std::set<std::string, std::less<>> names_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velmorquit
