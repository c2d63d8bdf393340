#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours one pixel of an unsigned integer image: mask and special colours first, then the
// logarithmic table from the foreground on, the linear table above the background, and its first
// entry below.

uniform usampler2D textureImg;
uniform usampler2D textureMask;
uniform sampler1D linData;
uniform sampler1D logData;
uniform int logDataSize;
// The bits of unsigned values.
uniform int foreground;
uniform int background;
uniform int logForeground;
uniform int countCutoff = 0;
uniform float slope;
uniform float logSlope;
uniform float logOffset;
uniform vec4 saturatedColor = vec4(0.0, 0.0, 0.0, 1.0);
uniform vec4 defectiveColor = vec4(0.0, 0.0, 0.0, 1.0);
uniform bool highlightDefective = false;
uniform bool highlightSaturated = false;

in vec2 f_texcoord;
out vec4 color;

// Distance of a value from the background, exact in the pixel type for values above it.
float distanceFromBackground(uint i)
{
    return float(i - uint(background));
}

vec4 aboveForeground(uint i, int linDataSize)
{
    if (logDataSize == 0 || uint(logForeground) <= uint(foreground))
        return texture(linData, 1.0 - 0.5 / float(linDataSize));
    if (i >= uint(logForeground))
        return texture(logData, 0.99999);
    float index = logOffset;
    if (logSlope != 0.0)
        index += logSlope * log(distanceFromBackground(i));
    return texture(logData, clamp(index / float(logDataSize), 0.0, 1.0));
}

void main()
{
    uint i = texture(textureImg, f_texcoord).r;
    uint m = texture(textureMask, f_texcoord).r;
    int linDataSize = textureSize(linData, 0);

    if (highlightDefective && (m & 30u) != 0u)
        color = defectiveColor;
    else if ((m & 1u) != 0u)
        color = vec4(0.0, 0.0, 0.0, 1.0);
    else if (highlightSaturated && i >= uint(countCutoff))
        color = saturatedColor;
    else if (i >= uint(foreground))
        color = aboveForeground(i, linDataSize);
    else if (i > uint(background))
        color = texture(linData,
                        clamp(slope * distanceFromBackground(i) / float(linDataSize), 0.0, 1.0));
    else
        color = texture(linData, 0.0);
}
