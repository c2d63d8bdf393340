// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The surface of a view that draws through OpenGL.
#pragma once

#include <QOpenGLWidget>

#include <functional>

namespace render {

/// Fills a view and leaves all events of mouse and keys to it. A widget of its own because Qt ends
/// the process when it shows a window that holds one of these and has no OpenGL; then a view makes
/// none.
class GlCanvas : public QOpenGLWidget {
    Q_OBJECT
public:
    /// What the view does in a context of this widget, which is current.
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
