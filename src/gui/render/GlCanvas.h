// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The surface of a view that draws through OpenGL.
#pragma once

#include <QOpenGLWidget>

#include <functional>

namespace render {

/// Fills a view and passes all mouse and key events to it. A widget of its own because Qt ends
/// the process when it shows a window with one of these and there is no OpenGL; a view then makes
/// none.
class GlCanvas : public QOpenGLWidget {
    Q_OBJECT
public:
    /// Callbacks of the view; the context of this widget is current in them.
    struct Client {
        std::function<void()> initialize;  ///< a context is new
        std::function<void()> paint;
        std::function<void()> release;  ///< a context is about to end
    };

    GlCanvas(QWidget* view, Client client);
    ~GlCanvas() override;

protected:
    void initializeGL() override;
    void paintGL() override;

private:
    void _release();

    Client _client;
    QMetaObject::Connection _contextEnd;
};

}  // namespace render
