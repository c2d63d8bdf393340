// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ShortcutSheet.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

QLabel* label(const QString& text, bool bold)
{
    auto* result = new QLabel(text);
    result->setTextFormat(Qt::PlainText);
    QFont font = result->font();
    font.setPointSize(12);
    font.setBold(bold);
    result->setFont(font);
    return result;
}

}  // namespace

ShortcutSheet::ShortcutSheet(const QList<Section>& sections, QWidget* parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Shortcuts"));
    auto* table = new QWidget;
    auto* grid = new QGridLayout(table);
    grid->setHorizontalSpacing(30);
    grid->setVerticalSpacing(3);
    grid->setColumnStretch(1, 1);
    for (const Section& section : sections) {
        if (section.rows.isEmpty())
            continue;
        if (grid->count() > 0)
            grid->setRowMinimumHeight(grid->rowCount(), 12);
        grid->addWidget(label(section.title, true), grid->rowCount(), 0, 1, 2);
        for (const Row& row : section.rows) {
            const int line = grid->rowCount();
            grid->addWidget(label(row.keys, false), line, 0, Qt::AlignTop);
            grid->addWidget(label(row.effect, false), line, 1, Qt::AlignTop);
        }
    }
    grid->setRowStretch(grid->rowCount(), 1);

    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(table);
    auto* close = new QPushButton(QStringLiteral("Close"));
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(area, 1);
    layout->addWidget(close, 0, Qt::AlignRight);

    const QSize room = screen()->availableSize() * 9 / 10;
    const int width = table->sizeHint().width() + area->verticalScrollBar()->sizeHint().width();
    resize(QSize(width + 40, table->sizeHint().height() + 80).boundedTo(room));
}

QString ShortcutSheet::effectOf(const QString& toolTip)
{
    static const QRegularExpression key(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    return toolTip.section('\n', 0, 0).remove(key).trimmed();
}
