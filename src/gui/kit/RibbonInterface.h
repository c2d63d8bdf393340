// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Tabs of tool bars, of which one is shown.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QStackedLayout>
#include <QToolBar>
#include <QWidget>

#include <map>

/// A stack of tool bars. Each tab has a checkable action, which the owner may put anywhere
/// and brings its tool bar to the front. Unknown names are ignored.
class RibbonInterface : public QWidget {
    Q_OBJECT
public:
    explicit RibbonInterface(QWidget* parent = nullptr);

    /// Adds a tab; the first one is shown.
    QAction* addToolBar(const QString& name);
    void addAction(const QString& name, QAction* action);
    void addWidget(const QString& name, QWidget* widget);
    void addSeparator(const QString& name);
    /// Removes all tabs.
    void clear();
    void show(const QString& name);
    void show() { QWidget::show(); }
    /// Null for an unknown name.
    QToolBar* toolBar(const QString& name) const;

    QSize sizeHint() const override;

private slots:
    void show(QAction* action);

private:
    QStackedLayout* _layout;
    QActionGroup* _actionGroup;
    std::map<QString, QToolBar*> _toolBars;
    std::map<QAction*, QToolBar*> _actionToolBars;
};
