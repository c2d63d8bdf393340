// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SaveFileDialog.h"

#include "logic/support/Console.h"

#include <QFileInfo>

SaveFileDialog::SaveFileDialog(QWidget* parent, const QStringList& extensions,
                               const QString& caption, const QString& directory)
    : QFileDialog(parent, caption, directory)
{
    console::print("0 " + this->directory().absolutePath().toStdString() + '\n');
    setFileMode(AnyFile);
    setAcceptMode(AcceptSave);
    setOption(DontUseNativeDialog);
    QStringList filters;
    for (const QString& extension : extensions) {
        const QString lower = extension.toLower();
        const QString filter = lower + QStringLiteral(" ( *.") + lower + ')';
        _extensionToFilter[extension] = filter;
        _filterToExtension[filter] = extension;
        filters << filter;
    }
    setNameFilters(filters);
    connect(this, &QFileDialog::filterSelected, this, &SaveFileDialog::_applyFilterSlot);
    _applyFilterSlot(selectedNameFilter());
}

void SaveFileDialog::setExtension(const QString& extension)
{
    selectNameFilter(_extensionToFilter.value(extension));
    setDefaultSuffix(extension);
}

QString SaveFileDialog::extension() const { return _filterToExtension.value(selectedNameFilter()); }

void SaveFileDialog::_applyFilterSlot(const QString& filter)
{
    const QString extension = _filterToExtension.value(filter);
    setDefaultSuffix(extension);
    const QStringList files = selectedFiles();
    if (files.isEmpty())
        return;
    const QFileInfo file(files.first());
    if (!file.isDir() && file.suffix() != extension)
        selectFile(file.dir().filePath(file.completeBaseName() + '.' + extension));
}
