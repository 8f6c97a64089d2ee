#pragma once

#include "Loop/Subscribers.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <utility>

namespace velmorquit {

/// The observers of a workspace. A callback may cause further changes, which are told at once.
class WorkspaceObservers {
public:
    [[nodiscard]] Handle add(std::function<void(const WorkspaceChanges&)> told) {
        return subscribers_.add([changes = changes_, told = std::move(told)] { told(**changes); });
    }

    /// Does nothing without changes.
    void tell(const WorkspaceChanges& changes) {
        if (changes.empty())
            return;
        const auto* before = std::exchange(*changes_, &changes);
        subscribers_.tell();
        *changes_ = before;
    }

private:
    Subscribers subscribers_;
    /// The changes being told at present.
    std::shared_ptr<const WorkspaceChanges*> changes_ =
        std::make_shared<const WorkspaceChanges*>(nullptr);
};

} // namespace velmorquit
