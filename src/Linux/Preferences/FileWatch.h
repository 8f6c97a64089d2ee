#pragma once

#include "Linux/Files/Descriptor.h"

#include <QSocketNotifier>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace velmorquit {

/// Tells of what others do to files of certain names. For the main thread, with a QCoreApplication;
/// silent where the system has no means left to watch.
class FileWatch {
public:
    explicit FileWatch(std::function<void()> told);

    /// Watching the directory again is no error; a directory that isn't there is not watched. Not
    /// told of: a file that was made and is still being written.
    void add(const std::filesystem::path& file);

private:
    bool readEvents();

    Descriptor descriptor_;
    std::set<std::string, std::less<>> names_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velmorquit
