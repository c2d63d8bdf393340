// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view's own record of one kind and its place in a group.
#pragma once

#include "logic/core/SyncGroups.h"

#include <functional>
#include <string>
#include <utility>

/// The record that a service holds, and the observer that keeps it equal across its group. Leaves
/// the group when it is destroyed. Thread: GUI only.
template <class T>
class ViewRecord : public AbstractObserver<T> {
public:
    /// @param arrived called when the group has brought a new value
    ViewRecord(SyncGroups<T>& groups, std::function<void()> arrived)
        : _groups(groups)
        , _arrived(std::move(arrived))
    {}
    ~ViewRecord() override { _groups.detach(*this); }

    const T& value() const { return _value; }
    /// Stores a value for this view alone; spreadValue() hands it to the group.
    void store(const T& value) { _value = value; }
    void spreadValue() { this->spread(_value); }

    /// Leaves the group and becomes a member of another one, whose record data() then is.
    void changeGroup(const std::string& syncId)
    {
        _groups.detach(*this);
        _groups.attach(*this, syncId);
    }

    void virtualNotify() override
    {
        _value = this->data();
        _arrived();
    }

private:
    SyncGroups<T>& _groups;
    const std::function<void()> _arrived;
    T _value;
};
