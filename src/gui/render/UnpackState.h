// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How OpenGL reads pixels from memory, for the time of an upload.
#pragma once

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <array>

namespace render {

/// Sets tightly packed pixels, as images hold them, and restores the former state (except
/// GL_PACK_ALIGNMENT).
class UnpackState {
public:
    /// @param rowLength  pixels from one row to the next
    explicit UnpackState(int rowLength)
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            _gl.glGetIntegerv(names[i], &_saved[i]);
        _gl.glPixelStorei(GL_PACK_ALIGNMENT, 1);
        _gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        _gl.glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
        _gl.glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
        _gl.glPixelStorei(GL_UNPACK_ROW_LENGTH, rowLength);
        _gl.glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
        _gl.glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    }
    ~UnpackState()
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            _gl.glPixelStorei(names[i], _saved[i]);
    }
    UnpackState(const UnpackState&) = delete;
    UnpackState& operator=(const UnpackState&) = delete;

private:
    static constexpr std::array<GLenum, 6> names{GL_UNPACK_ALIGNMENT,  GL_UNPACK_SKIP_PIXELS,
                                                 GL_UNPACK_SKIP_ROWS,  GL_UNPACK_ROW_LENGTH,
                                                 GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST};
    QOpenGLFunctions& _gl = *QOpenGLContext::currentContext()->functions();
    std::array<GLint, 6> _saved{};
};

}  // namespace render
