// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The OpenGL context that some objects were made in, for their end.
#pragma once

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPointer>

#include <memory>

namespace render {

/// Remembers the context that is current when this is made. The owner of objects on the graphics
/// card may be destroyed at any time, with that context current, another one or none: it enters its
/// own first; what was current before is current again after this is destroyed. Declared before the
/// objects, it outlives them. Thread: GUI.
class OwnContext {
public:
    OwnContext();
    ~OwnContext();
    OwnContext(const OwnContext&) = delete;
    OwnContext& operator=(const OwnContext&) = delete;

    /// Makes the context current.
    /// @returns false if there is none or it has ended, and its objects with it
    bool enter();

private:
    QPointer<QOpenGLContext> _context;
    std::unique_ptr<QOffscreenSurface> _surface;  // only if another context was current, or none
    QPointer<QOpenGLContext> _former;
    QSurface* _formerSurface = nullptr;
};

}  // namespace render
