// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The slim bar over the content of a frame: controls, title and exit button.
#pragma once

#include <QAction>
#include <QColor>
#include <QHBoxLayout>
#include <QPushButton>
#include <QWidget>

class TitleLabel;

/// Shows by its colour whether its frame is the active one. An action added to it (also by
/// QWidget::addAction) appears as a tool button.
class TitleBar : public QWidget {
    Q_OBJECT
public:
    /// Height in pixels.
    static constexpr int FixedHeight = 25;

    explicit TitleBar(QWidget* parent = nullptr);
    ~TitleBar() override;

    /// Colours take effect at the next change of activation.
    void setActiveColor(unsigned char red, unsigned char green, unsigned char blue);
    void setNonActiveColor(unsigned char red, unsigned char green, unsigned char blue);
    QColor activeColor() const { return _activeColor; }
    QColor nonActiveColor() const { return _nonActiveColor; }
    void setActivated(bool activated);

    /// Shows the end of a title that is too wide, and the whole of it as tooltip.
    void setTitle(const QString& title);
    /// The title as it is shown, elided if necessary.
    QString shownTitle() const;

    QPushButton* exitButton() const { return _exitButton; }
    void showExitButton() { _exitButton->show(); }
    void hideExitButton() { _exitButton->hide(); }

    /// Adds after what was added before, left of the title.
    void addWidget(QWidget* widget);
    void addSpacing(int pixels);
    /// All that was added, including tool buttons of actions.
    const QList<QWidget*>& titleWidgets() const { return _titleWidgets; }
    const QList<QAction*>& titleActions() const { return _titleActions; }

    QSize minimumSizeHint() const override;

protected:
    void actionEvent(QActionEvent* event) override;

private:
    void _removeAction(const QAction* action);
    void _setStyleSheet(const QColor& background);

    TitleLabel* _titleLabel;
    QPushButton* _exitButton;
    QHBoxLayout* _itemLayout;
    int _itemCount = 0;
    QList<QAction*> _titleActions;
    QList<QWidget*> _titleWidgets;
    bool _activated = false;
    QColor _activeColor{20, 100, 220};
    QColor _nonActiveColor{70, 70, 70};
};
