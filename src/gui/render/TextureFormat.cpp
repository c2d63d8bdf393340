// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/TextureFormat.h"

#include <QOpenGLFunctions>

namespace render {

namespace datatypes = morvend::datatypes;

PixelKind kindOf(datatypes::Type type)
{
    switch (type) {
    case datatypes::FLOAT:
        return PixelKind::Float;
    case datatypes::UINT:
        return PixelKind::UInt;
    default:
        return PixelKind::Int;
    }
}

TextureFormat TextureFormat::ofImage(datatypes::Type type, std::size_t bits)
{
    switch (kindOf(type)) {
    case PixelKind::Float:
        return {GL_R32F, GL_RED, GL_FLOAT, 4, bits == 32};
    case PixelKind::UInt:
        if (bits == 8)
            return {GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 1, true};
        if (bits == 16)
            return {GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 2, true};
        return {GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4, bits == 32};
    case PixelKind::Int:
        break;
    }
    if (bits == 8)
        return {GL_R8I, GL_RED_INTEGER, GL_BYTE, 1, true};
    if (bits == 16)
        return {GL_R16I, GL_RED_INTEGER, GL_SHORT, 2, true};
    return {GL_R32I, GL_RED_INTEGER, GL_INT, 4, bits == 32};
}

TextureFormat TextureFormat::ofMask(datatypes::Type type, std::size_t bits)
{
    return {GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 1, type != datatypes::FLOAT && bits == 8};
}

}  // namespace render
