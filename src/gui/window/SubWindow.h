// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One image view of the main window.
#pragma once

#include "gui/kit/AbstractSubWindow.h"
#include "gui/kit/ApiCallable.h"
#include "imagelib/display/MDrawingList.h"
#include "imagelib/display/MRect.h"
#include "imagelib/image/MImage.h"

#include <QRectF>
#include <QSize>
#include <QString>

class ImageDrawerMain;
class SubWindowEventControl;
class SubWindowTitleBar;
class TarvikService;
class ViewHost;

/// A frame around one image view, with the controls of that view in its title bar. It does not own
/// the service of the view, but lives and dies with it.
///
/// Its slots copy a record of the service, change a field and hand it back. A load that fails ends
/// in an error dialog; the previous image stays. A line over the image reports what a step has
/// skipped. Thread: GUI only.
class SubWindow : public AbstractSubWindow {
    Q_OBJECT
public:
    using MDrawingList = morvend::imglib::MDrawingList<>;
    using MImage = morvend::imglib::MImage;
    using MRect = morvend::imglib::MRect;

    /// @param mainWindow  outlives the view
    SubWindow(ViewHost& mainWindow, TarvikService* service, bool useGlsl);
    ~SubWindow() override;

    TarvikService* service() const { return _service; }
    ImageDrawerMain* imageDrawer() const { return _imageDrawer; }
    SubWindowEventControl* subWindowEventControl() const { return _eventControl; }
    /// The file on show, as it was opened but with its whole path; empty without.
    const QString& file() const { return _file; }
    /// True if keys go to the image, and not into a field.
    bool imageHasFocus() const;
    /// One step in or out (1 or -1) about the centre of the view.
    void zoom(int step);
    /// The visible part of the image, in image pixels.
    QRectF visibileRange() const;  // the spelling is part of the interface
    /// Size of the view in screen pixels.
    QSize displaySize() const;

public slots:
    /// Opens a file; the open dialog starts in its folder from now on. A view without an image
    /// shows the file's name until its image comes.
    API_CALLABLE void loadFile(const QString& fileName);
    /// The same, for a view that was made for this file: it closes if the file can't be shown.
    void loadFileOrClose(const QString& fileName);
    API_CALLABLE void loadImage(const MImage* image);
    API_CALLABLE void addToPaintList(const MDrawingList* list);
    API_CALLABLE void setPaintList(const MDrawingList* list);
    API_CALLABLE void clearPaintList();
    API_CALLABLE void goTo(int imageNumber);
    API_CALLABLE void setOffsetX(double offsetX);
    API_CALLABLE void setOffsetY(double offsetY);
    /// @param zoomPower  zoom as a power of two, clamped to -2 to 6
    API_CALLABLE void setZoomPower(int zoomPower);
    API_CALLABLE void setViewport(double offsetX, double offsetY, int zoomPower);
    API_CALLABLE void setForeground(double foreground);
    API_CALLABLE void setBackground(double background);
    API_CALLABLE void setContrast(double foreground, double background);
    /// A title that new images don't overwrite, until unsetTitle().
    API_CALLABLE void setTitle(const QString& windowTitle);
    API_CALLABLE void unsetTitle();
    /// Takes a colour table by its identifier or its short name: HDR, GS, H, RB, V, C. Other names
    /// change nothing.
    API_CALLABLE void setColorMode(const QString& colormode);
    API_CALLABLE void showResolutionRings();
    API_CALLABLE void hideResolutionRings();
    /// Asks for a file, and writes a picture of the view or of its image to it.
    void openExportDialog();
    /// Writes the view with its overlays, and a colour bar in the given rectangle. Returns when all
    /// is written. @throws MNoFileAccessException "Cannot write to " and the name
    void exportToFile(const QString& fileName, const QString& format, MRect colorLegendPos);
    void exportToFile(const QString& fileName, const QString& format);
    /// Asks for a file, and writes a copy of the image to it.
    void openSaveAsDialog();

signals:
    /// A new file was requested.
    void changedFile();
    void aboutToTerminate(QObject* window);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void _newImageSlot();
    void _errorSlot(const QString& message);
    void _activate(Qt::WindowStates oldState, Qt::WindowStates newState);
    void _setFileIncreaseNumber(int index);
    void _loadNextFileSlot();
    void _loadPreviousFileSlot();
    void _autoLoadSlot();
    // The service owns the modes, the view only follows.
    void _passiveAutoLoadSlot(bool on);
    void _passiveWatchSeriesModeSlot(bool on);
    void _passiveHalvoMonitorModeSlot(bool on);
    void _passiveHalvoMonitorHostSlot(const QString& host, int port, double minPause);

private:
    template <class Change>
    void _changeViewport(Change&& change);
    template <class Change>
    void _changeContrast(Change&& change);
    void _connectService();
    void _setActions();
    /// Reports the requested file to the window once it has answered. Checking it earlier could
    /// wait as long as the file system does.
    void _noteAnswer(bool shown);

    ViewHost& _mainWindow;
    TarvikService* _service;
    Qt::WindowStates _windowState;
    ImageDrawerMain* _imageDrawer = nullptr;
    SubWindowTitleBar* _controls;
    SubWindowEventControl* _eventControl;
    int _fileIncreaseNumber = 1;
    QString _asked;  // the file, until it has answered
    QString _file;   // the one on show
    bool _titleFixed = false;
    bool _closesOnError = false;
};
