// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour of a pixel: mask and special colours first, then the logarithmic table from the
// foreground on, the linear table above the background, and its first entry below. The includer
// defines the types Sampler, Value (of a pixel) and Level (of a uniform), and DISTANCE.

uniform Sampler textureImg;
uniform usampler2D textureMask;
uniform sampler1D linData;
uniform sampler1D logData;
uniform int logDataSize;
uniform Level foreground;
uniform Level background;
uniform Level logForeground;
uniform Level countCutoff = Level(0);
uniform float slope;
uniform float logSlope;
uniform float logOffset;
uniform vec4 saturatedColor = vec4(0.0, 0.0, 0.0, 1.0);
uniform vec4 defectiveColor = vec4(0.0, 0.0, 0.0, 1.0);
uniform bool highlightDefective = false;
uniform bool highlightSaturated = false;

in vec2 f_texcoord;
out vec4 color;

vec4 aboveForeground(Value i, int linDataSize)
{
    if (logDataSize == 0 || Value(logForeground) <= Value(foreground))
        return texture(linData, 1.0 - 0.5 / float(linDataSize));
    if (i >= Value(logForeground))
        return texture(logData, 0.99999);
    float index = logOffset;
    if (logSlope != 0.0)
        index += logSlope * log(DISTANCE(i, background));
    return texture(logData, clamp(index / float(logDataSize), 0.0, 1.0));
}

void main()
{
    Value i = texture(textureImg, f_texcoord).r;
    uint m = texture(textureMask, f_texcoord).r;
    int linDataSize = textureSize(linData, 0);

    if (highlightDefective && (m & 30u) != 0u)
        color = defectiveColor;
    else if ((m & 1u) != 0u)
        color = vec4(0.0, 0.0, 0.0, 1.0);
    else if (highlightSaturated && i >= Value(countCutoff))
        color = saturatedColor;
    else if (i >= Value(foreground))
        color = aboveForeground(i, linDataSize);
    else if (i > Value(background))
        color = texture(linData,
                        clamp(slope * DISTANCE(i, background) / float(linDataSize), 0.0, 1.0));
    else
        color = texture(linData, 0.0);
}
