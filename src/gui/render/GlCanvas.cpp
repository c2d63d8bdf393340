// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/GlCanvas.h"

#include <QOpenGLContext>

#include <utility>

namespace render {

GlCanvas::GlCanvas(QWidget* view, Client client)
    : QOpenGLWidget(view)
    , _client(std::move(client))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAutoFillBackground(false);
}

GlCanvas::~GlCanvas() { _release(); }

void GlCanvas::initializeGL()
{
    // A view that moved to a window with its own context starts again.
    _release();
    _contextEnd = connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &GlCanvas::_release,
                          Qt::DirectConnection);
    _client.initialize();
}

void GlCanvas::paintGL() { _client.paint(); }

void GlCanvas::_release()
{
    if (!_contextEnd)
        return;
    disconnect(_contextEnd);
    _contextEnd = {};
    makeCurrent();
    _client.release();
    doneCurrent();
}

}  // namespace render
