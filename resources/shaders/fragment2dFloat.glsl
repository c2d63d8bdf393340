#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours one pixel of a float image: mask and special colours first, then the
// logarithmic table from the foreground on, the linear table above the background, and its first
// entry below.

uniform sampler2D textureImg;
uniform usampler2D textureMask;
uniform sampler1D linData;
uniform sampler1D logData;
uniform int logDataSize;
uniform float foreground;
uniform float background;
uniform float logForeground;
uniform float countCutoff = 0.0;
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
float distanceFromBackground(float i)
{
    return i - background;
}

vec4 aboveForeground(float i, int linDataSize)
{
    if (logDataSize == 0 || logForeground <= foreground)
        return texture(linData, 1.0 - 0.5 / float(linDataSize));
    if (i >= logForeground)
        return texture(logData, 0.99999);
    float index = logOffset;
    if (logSlope != 0.0)
        index += logSlope * log(distanceFromBackground(i));
    return texture(logData, clamp(index / float(logDataSize), 0.0, 1.0));
}

void main()
{
    float i = texture(textureImg, f_texcoord).r;
    uint m = texture(textureMask, f_texcoord).r;
    int linDataSize = textureSize(linData, 0);

    if (highlightDefective && (m & 30u) != 0u)
        color = defectiveColor;
    else if ((m & 1u) != 0u)
        color = vec4(0.0, 0.0, 0.0, 1.0);
    else if (highlightSaturated && i >= countCutoff)
        color = saturatedColor;
    else if (i >= foreground)
        color = aboveForeground(i, linDataSize);
    else if (i > background)
        color = texture(linData,
                        clamp(slope * distanceFromBackground(i) / float(linDataSize), 0.0, 1.0));
    else
        color = texture(linData, 0.0);
}
