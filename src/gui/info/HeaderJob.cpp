// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/HeaderJob.h"

#include <QFontDatabase>

HeaderReportView::HeaderReportView(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setMinimumSize(560, 200);
}

void HeaderReportView::setReport(const HeaderReport& report, const QString& did)
{
    QString text = QString::fromStdString(report.text(did.toStdString()));
    for (const std::string& failure : report.failures())
        text += '\n' + QString::fromStdString(failure);
    setPlainText(text);
}
