// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The groups of views that share one kind of record.
#pragma once

#include "logic/records/Synchronizer.h"

#include <map>
#include <string>
#include <vector>

/// All groups of one record T by their sync id. A group exists as long as it has a member; its
/// record ends with the last one. Thread: GUI only.
template <class T>
class SyncGroups {
public:
    /// Makes the observer a member of a group, which is created if it is the first. The observer
    /// takes over the group's record silently.
    void attach(AbstractObserver<T>& observer, const std::string& syncId)
    {
        Synchronizer<T>& group = _groups[syncId];
        group.setEnabled(_enabled);
        observer.join(group);
    }

    /// Takes the observer out of its group; without a group nothing happens.
    void detach(AbstractObserver<T>& observer)
    {
        for (auto group = _groups.begin(); group != _groups.end(); ++group) {
            if (!group->second.detach(observer))
                continue;
            if (group->second.empty())
                _groups.erase(group);
            return;
        }
    }

    bool enabled() const { return _enabled; }
    /// True if changes spread. Switching on makes all members take over their group's record.
    /// @returns whether the value has changed
    bool setEnabled(bool enabled)
    {
        if (enabled == _enabled)
            return false;
        _enabled = enabled;
        // A notified member may leave, which may end its group.
        std::vector<std::string> syncIds;
        for (const auto& [syncId, group] : _groups)
            syncIds.push_back(syncId);
        for (const std::string& syncId : syncIds)
            if (const auto group = _groups.find(syncId); group != _groups.end())
                group->second.setEnabled(enabled);
        return true;
    }

private:
    std::map<std::string, Synchronizer<T>> _groups;
    bool _enabled = true;
};
