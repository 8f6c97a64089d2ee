#include "Linux/Preferences/FileWatch.h"

#include <array>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace velmorquit {

FileWatch::FileWatch(std::function<void()> told)
    : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!descriptor_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, told = std::move(told)] {
        if (readEvents())
            told();
    });
}

void FileWatch::add(const std::filesystem::path& file) {
    names_.insert(file.filename());
    inotify_add_watch(descriptor_.get(), file.parent_path().c_str(),
                      IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB);
}

bool FileWatch::readEvents() {
    bool isConcerned = false;
    alignas(inotify_event) std::array<char, 4096> events;
    for (;;) {
        const ssize_t size = ::read(descriptor_.get(), events.data(), events.size());
        if (size <= 0)
            return isConcerned;
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
            isConcerned |= (event->mask & IN_Q_OVERFLOW) != 0 ||
                           (event->len > 0 && names_.contains(event->name));
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
}

} // namespace velmorquit
