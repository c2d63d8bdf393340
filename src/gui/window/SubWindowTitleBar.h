// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The controls in the title bar of an image view.
#pragma once

#include <QAction>
#include <QComboBox>
#include <QObject>

class AbstractSubWindow;

/// The step box and the actions that go through a series by its step. Child of the frame.
class SubWindowTitleBar : public QObject {
    Q_OBJECT
public:
    /// Adds the controls to the title bar of a frame.
    explicit SubWindowTitleBar(AbstractSubWindow& frame);

    QAction* previousAction() const { return _previousAction; }
    QAction* nextAction() const { return _nextAction; }
    QComboBox* stepBox() const { return _stepBox; }
    /// Images to step forward or back.
    int step() const;
    /// Enables or disables the controls that need an image.
    void setImageLoaded(bool loaded);

private:
    QComboBox* _stepBox;
    QAction* _previousAction;
    QAction* _nextAction;
};
