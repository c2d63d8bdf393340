// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view's own record of one kind and its place in a group.
#pragma once

#include "logic/records/SyncGroups.h"

#include <functional>
#include <string>
#include <utility>

/// The record that a view holds, and the observer that keeps it equal across its group. Leaves
/// the group when it is destroyed. Thread: GUI only.
template <class T>
class ViewRecord : public AbstractObserver<T> {
public:
    /// @param arrived  called when the group has set a new value
    ViewRecord(SyncGroups<T>& groups, std::function<void()> arrived)
        : _groups(groups)
        , _arrived(std::move(arrived))
    {}
    ~ViewRecord() override { _groups.detach(*this); }

    const T& value() const { return _value; }
    /// Stores a value for this view only; spreadValue() hands it to the group.
    void store(const T& value) { _value = value; }
    void spreadValue() { this->spread(_value); }

    /// Leaves the group and becomes a member of another one. Takes over that group's value, unless
    /// the user has changed this one since a request.
    /// @returns whether the value has changed
    bool changeGroup(const std::string& syncId, const T& atRequest)
    {
        _groups.detach(*this);
        _groups.attach(*this, syncId);
        if (_value != atRequest)
            return false;
        const bool differs = _value != this->data();
        _value = this->data();
        return differs;
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
