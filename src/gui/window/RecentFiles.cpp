// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/RecentFiles.h"

#include "gui/kit/ToolTipText.h"
#include "gui/window/LaterSettings.h"
#include "logic/loading/WorkerPool.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QSettings>

namespace {

const QString SettingsKey = QStringLiteral("RecentFiles");

QStringList withFile(QStringList files, const QString& file)
{
    files.removeAll(file);
    files.prepend(file);
    return files.mid(0, RecentFiles::Most);
}

/// Without the data set in it.
QString fileOf(const QString& path) { return path.section(QStringLiteral("::/"), 0, 0); }

}  // namespace

RecentFiles::RecentFiles(QWidget* parent)
    : QMenu(parent)
    , _files(QSettings().value(SettingsKey).toStringList().mid(0, Most))
{
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, [this] {
        _fill();
        _lookUp();
    });
    connect(this, &QMenu::triggered, this,
            [this](const QAction* entry) { emit chosen(entry->data().toString()); });
    _fill();
}

void RecentFiles::add(const QString& file)
{
    if (!_files.isEmpty() && _files.first() == file)
        return;
    _files = withFile(_files, file);
    _exists.removeIf([this](const auto& each) { return !_files.contains(each.key()); });
    _exists[file] = true;
    later_settings::change(SettingsKey, [file](const QVariant& stored) {
        return QVariant(withFile(stored.toStringList(), file));
    });
}

void RecentFiles::_fill()
{
    clear();
    for (const QString& file : std::as_const(_files)) {
        const QFileInfo info(file);  // takes the text apart, asks no file system
        QString name = info.fileName();
        QAction* entry = addAction(name.replace('&', QStringLiteral("&&")));
        entry->setToolTip(toolTipText(info.path()));
        entry->setData(file);
        entry->setEnabled(_exists.value(file, true));
    }
    if (_files.isEmpty())
        addAction(QStringLiteral("No files yet"))->setEnabled(false);
}

void RecentFiles::_lookUp()
{
    // One job each: a mount that doesn't answer must not hide the others.
    for (const QString& file : std::as_const(_files)) {
        WorkerPool::process().post([file, menu = QPointer(this)] {
            const bool exists = QFileInfo::exists(fileOf(file));
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [file, exists, menu] {
                    if (menu)
                        menu->_setExists(file, exists);
                },
                Qt::QueuedConnection);
        });
    }
}

void RecentFiles::_setExists(const QString& file, bool exists)
{
    _exists[file] = exists;
    for (QAction* entry : actions())
        if (entry->data().toString() == file)
            entry->setEnabled(exists);
}
