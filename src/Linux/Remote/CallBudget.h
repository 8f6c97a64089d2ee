#pragma once

#include "Loop/Time.h"

#include <map>
#include <string>

namespace velmorquit {

/// Limits the main thread's time spent on requests of other processes: each gets at most a tenth,
/// all together a quarter, averaged over some seconds. So callers that never stop leave room for
/// others and for the program itself.
class CallBudget {
public:
    /// Whether a call by that process (its name on the bus) may be answered now.
    [[nodiscard]] bool allows(const std::string& caller, Uptime now);

    /// Its answer took this much processor time.
    void charge(const std::string& caller, Uptime now, Duration spent);

private:
    /// `most` may be spent at once; a fraction of the time that passes is added.
    struct Share {
        Duration most;
        int fraction; ///< 1 / fraction of the time
    };
    static constexpr Share ofOne{.most = 1s, .fraction = 10};
    static constexpr Share ofAll{.most = 3s, .fraction = 4};
    /// Callers without debts are forgotten; beyond this number, further ones share one account.
    static constexpr std::size_t mostCallers = 64;

    /// The time when everything spent will be paid off.
    using Debt = Uptime;
    static bool isSolvent(Debt debt, Uptime now, Share share);
    static void add(Debt& debt, Uptime now, Duration spent, Share share);
    Debt& accountOf(const std::string& caller, Uptime now);

    std::map<std::string, Debt> callers_;
    Debt all_;
};

} // namespace velmorquit
