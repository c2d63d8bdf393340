// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The controls in the title bar of an image view.
#pragma once

#include <QAction>
#include <QComboBox>
#include <QIcon>
#include <QObject>

class AbstractSubWindow;
class FastContrastControl;
class GotoButton;
class TarvikService;

/// The step box and the actions that go through a series by its step, the way to an image by its
/// number, and a small control of the contrast. Child of the frame.
class SubWindowTitleBar : public QObject {
    Q_OBJECT
public:
    /// Adds the controls to the title bar of a frame.
    /// @param service  of the view in the frame; lives as long as the frame
    SubWindowTitleBar(AbstractSubWindow& frame, TarvikService* service);

    QAction* previousAction() const { return _previousAction; }
    QAction* nextAction() const { return _nextAction; }
    QAction* movieAction() const { return _movieAction; }
    QComboBox* stepBox() const { return _stepBox; }
    /// Enables or disables the controls that need an image.
    void setImageLoaded(bool loaded);
    /// Shows whether a movie is playing, without triggering anything.
    void setMovie(bool playing);

private:
    QComboBox* _stepBox;
    QAction* _previousAction;
    QAction* _nextAction;
    QAction* _movieAction;
    GotoButton* _gotoButton;
    FastContrastControl* _fastContrast;
    const QIcon _continueIcon;
    const QIcon _interruptIcon;
};
