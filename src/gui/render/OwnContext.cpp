// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/OwnContext.h"

namespace render {

OwnContext::OwnContext()
    : _context(QOpenGLContext::currentContext())
{}

OwnContext::~OwnContext()
{
    if (!_surface)
        return;
    if (_context)
        _context->doneCurrent();
    if (_former)
        _former->makeCurrent(_formerSurface);
}

bool OwnContext::enter()
{
    if (!_context || QOpenGLContext::currentContext() == _context)
        return _context;
    _former = QOpenGLContext::currentContext();
    _formerSurface = _former ? _former->surface() : nullptr;
    _surface = std::make_unique<QOffscreenSurface>(_context->screen());
    _surface->setFormat(_context->format());
    _surface->create();
    return _context->makeCurrent(_surface.get());
}

}  // namespace render
