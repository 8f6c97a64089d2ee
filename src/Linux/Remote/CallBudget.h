#pragma once

#include "Loop/Time.h"

#include <map>
#include <string>

namespace velmorquit {

/// How much of the main thread's time goes into what other processes ask for: each of them gets a
/// tenth at the most and all together a quarter, over some seconds, so that whoever calls without
/// end leaves room for the others and for the program itself.
class CallBudget {
public:
    /// Whether the call of that process (its name on the bus) may be answered now.
    [[nodiscard]] bool allows(const std::string& caller, Uptime now);

    /// Its answer took so much processor time.
    void charge(const std::string& caller, Uptime now, Duration spent);

private:
    /// So much may be spent at one go; a share of the time that passes is added.
    struct Share {
        Duration most;
        int fraction; ///< one of so many parts
    };
    static constexpr Share ofOne{.most = 1s, .fraction = 10};
    static constexpr Share ofAll{.most = 3s, .fraction = 4};
    /// Those with nothing to pay off are forgotten; of more, the others share one account.
    static constexpr std::size_t mostCallers = 64;

    /// When all that was spent will have been paid off.
    using Debt = Uptime;
    static bool isSolvent(Debt debt, Uptime now, Share share);
    static void add(Debt& debt, Uptime now, Duration spent, Share share);
    Debt& accountOf(const std::string& caller, Uptime now);

    std::map<std::string, Debt> callers_;
    Debt all_;
};

} // namespace velmorquit
