#include "Linux/Remote/CallBudget.h"

#include <algorithm>

namespace velmorquit {

bool CallBudget::isSolvent(Debt debt, Uptime now, Share share) {
    return debt - now < share.most * share.fraction;
}

void CallBudget::add(Debt& debt, Uptime now, Duration spent, Share share) {
    debt = std::max(debt, now) + spent * share.fraction;
}

bool CallBudget::allows(const std::string& caller, Uptime now) {
    return isSolvent(all_, now, ofAll) && isSolvent(accountOf(caller, now), now, ofOne);
}

void CallBudget::charge(const std::string& caller, Uptime now, Duration spent) {
    add(all_, now, spent, ofAll);
    add(accountOf(caller, now), now, spent, ofOne);
}

CallBudget::Debt& CallBudget::accountOf(const std::string& caller, Uptime now) {
    if (const auto known = callers_.find(caller); known != callers_.end())
        return known->second;
    std::erase_if(callers_, [now](const auto& account) { return account.second <= now; });
    return callers_[callers_.size() < mostCallers ? caller : std::string()];
}

} // namespace velmorquit
