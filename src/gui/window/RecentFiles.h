// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files that were opened last.
#pragma once

#include <QHash>
#include <QMenu>
#include <QStringList>

/// A menu of the files that were shown last, the newest first, each with its folder as tooltip.
/// The menu opens at once; files that have vanished turn grey when a worker has looked. The list is
/// among the user's settings, shared by all running programs. Thread: GUI only.
class RecentFiles : public QMenu {
    Q_OBJECT
public:
    static constexpr int Most = 20;

    explicit RecentFiles(QWidget* parent = nullptr);

    void add(const QString& file);
    const QStringList& files() const { return _files; }

signals:
    void chosen(const QString& file);

private:
    void _fill();
    void _lookUp();
    void _setExists(const QString& file, bool exists);

    QStringList _files;
    QHash<QString, bool> _exists;  // as known from the last look
};
