// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/OpenGlSupport.h"

#include "logic/support/Console.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLWidget>

namespace render {

namespace {

OpenGlSupport tried()
{
    OpenGlSupport result;
    QOpenGLContext context;
    if (!context.create()) {
        result.reason = "the display gives no OpenGL context";
        return result;
    }
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface)) {
        result.reason = "an OpenGL context can't be used";
        return result;
    }
    result.info = GlInfo::ofCurrentContext();
    context.doneCurrent();
    // Qt composes windows by OpenGL 2, whatever the views draw.
    if (result.info->major < 2)
        result.reason = "OpenGL " + result.info->version + " is too old";
    else
        result.usable = true;
    return result;
}

/// Some platforms never show windows with OpenGL widgets, though contexts may be available.
bool platformComposes() { return QGuiApplication::platformName() != QLatin1String("offscreen"); }

}  // namespace

const OpenGlSupport& OpenGlSupport::ofThisProcess()
{
    static const OpenGlSupport support = [] {
        OpenGlSupport result = tried();
        if (result.usable && !platformComposes()) {
            result.usable = false;
            result.reason = "the display platform has no windows for it";
        }
        if (!result.usable)
            console::warn("WARNING: No OpenGL, as " + result.reason +
                          ": the processor draws all images\n");
        return result;
    }();
    return support;
}

void OpenGlSupport::prepare(QWidget& window)
{
    // The widgets inside decide the kind of a native surface when it is made. Never shown, so
    // it gets no context.
    if (ofThisProcess().usable)
        (new QOpenGLWidget(&window))->hide();
}

}  // namespace render
