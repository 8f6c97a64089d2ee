#pragma once

#include <QString>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// Which drives are being released, and which could not be. For any thread.
class DriveClaims {
public:
    /// Exclusive access to drives for as long as this is held.
    class Claim {
    public:
        /// Waits until no other thread holds any of them.
        Claim(DriveClaims& claims, std::set<QString> drives);
        Claim(const Claim&) = delete;
        Claim& operator=(const Claim&) = delete;
        ~Claim();

    private:
        DriveClaims& claims_;
        std::set<QString> drives_;
    };

    /// The drives that the path belonged to when releasing them failed; empty if there was no such
    /// attempt.
    [[nodiscard]] std::set<QString> unfinished(const std::string& path) const;

    /// Remembers that releasing the drives of these paths failed, or, if `drives` is empty, that it
    /// succeeded.
    void note(const std::vector<std::string>& paths, const std::set<QString>& drives);

private:
    mutable std::mutex mutex_;
    std::condition_variable released_;
    std::set<QString> claimed_;
    std::map<std::string, std::set<QString>> unfinished_;
};

} // namespace velmorquit
