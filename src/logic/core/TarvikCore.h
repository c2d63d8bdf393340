// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The centre of a viewer or daemon process: services of views, their groups, colour tables.
#pragma once

#include "logic/records/RecordGroups.h"

#include <QObject>
#include <QString>

#include <list>
#include <memory>
#include <set>

class HalvoService;
class TarvikService;

/// Creates and deletes the services of all views, connects views with one sync id and holds the
/// colour tables. Thread: GUI only.
class TarvikCore : public QObject {
    Q_OBJECT
public:
    using MColorTable = morvend::imglib::MColorTable;

    TarvikCore();
    /// Deletes the remaining services.
    ~TarvikCore() override;

    /// A new service, owned by the core. It takes the current default colour table
    /// , which a later change does not affect.
    /// @param additionalSyncID keeps views with different ones in different groups
    TarvikService* newService(const QString& additionalSyncID);
    /// Deletes a service when control returns to the event loop.
    void deleteService(TarvikService* service);

    /// Makes an observer a member of the group of a sync id; it takes over the group's record
    /// silently. A new group has a default record.
    template <class T>
    void attach(AbstractObserver<T>& observer, const char* syncID)
    {
        _groups.of<T>().attach(observer, syncID);
    }
    /// Takes an observer out of its group; without a group nothing happens.
    template <class T>
    void detach(AbstractObserver<T>& observer)
    {
        _groups.of<T>().detach(observer);
    }

    /// True if changes of a record spread through groups; at first they do.
    template <class T>
    bool synchronized() const
    {
        return _groups.of<T>().enabled();
    }

    /// Makes the table of this identifier the default; it must be one of the tables (asserted).
    void setDefaultColorTable(const QString& name);

    /// The detector of all views.
    std::shared_ptr<HalvoService> halvoService() const { return _halvoService; }

public slots:
    /// True if changes of a record spread through groups. A change of the flag is signalled once;
    /// switching on makes all views of a group take over the record that was set last.
    void synchronizeViewportSlot(bool flag);
    void synchronizeContrastSlot(bool flag);
    void synchronizeStatisticsSlot(bool flag);
    void synchronizePeaksSlot(bool flag);

signals:
    void synchronizeViewportSignal(bool flag);
    void synchronizeContrastSignal(bool flag);
    void synchronizeStatisticsSignal(bool flag);
    void synchronizePeaksSignal(bool flag);

private:
    std::set<TarvikService*> _services;
    RecordGroups _groups;
    std::list<const MColorTable*> _colorTables;
    const MColorTable* _defaultColorTable = nullptr;
    std::shared_ptr<HalvoService> _halvoService;
};
