#pragma once

#include <QString>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// Which drives are being let go, and which could not be. For any thread.
class DriveClaims {
public:
    /// Drives that no other thread touches for as long as this is held.
    class Claim {
    public:
        /// Waits until nobody else has any of them.
        Claim(DriveClaims& claims, std::set<QString> drives);
        Claim(const Claim&) = delete;
        Claim& operator=(const Claim&) = delete;
        ~Claim();

    private:
        DriveClaims& claims_;
        std::set<QString> drives_;
    };

    /// The drives that the path belonged to when they could not be let go; empty when there was no
    /// such attempt.
    [[nodiscard]] std::set<QString> unfinished(const std::string& path) const;

    /// Keeps in mind that the drives of these paths could not be let go, or that they were when
    /// `drives` is empty.
    void note(const std::vector<std::string>& paths, const std::set<QString>& drives);

private:
    mutable std::mutex mutex_;
    std::condition_variable released_;
    std::set<QString> claimed_;
    std::map<std::string, std::set<QString>> unfinished_;
};

} // namespace velmorquit
