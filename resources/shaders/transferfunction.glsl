// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour of a pixel: mask and special colours first, then the logarithmic table from the
// foreground on, the linear table above the background, and its first entry below. The includer
// defines the types Sampler, Value (of a pixel) and Level (of a uniform), and DISTANCE.

uniform Sampler textureImg;
uniform usampler2D textureMask;
// Screen pixel n of the quad shows pixel floor((start + n * pixelStep) / divisor) after the first
// one, in numbers that floats hold exactly; interpolated coordinates would leave it to chance which
// pixel is shown where a centre lies on a border. The start ends in a half, which keeps quotients
// farther from whole numbers than they can be off. The texture is read at the pixel's centre:
// software renderers are slower at texelFetch.
uniform vec2 firstCentre;
uniform vec2 start;
uniform float pixelStep;
uniform float inverseDivisor;
uniform vec2 inverseSize;
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

// In screen pixels from the corner of the quad.
in vec2 f_texcoord;
out vec4 color;

/// Where the colour of a value stands, in the logarithmic table or else in the linear one.
float tableCoordinate(Value i, out bool logarithmic)
{
    float linDataSize = float(textureSize(linData, 0));
    logarithmic = false;
    // Not i < foreground: what is no number has the first colour.
    if (!(i >= Value(foreground)))
        return i > Value(background)
                   ? clamp(slope * DISTANCE(i, background) / linDataSize, 0.0, 1.0)
                   : 0.0;
    if (logDataSize == 0 || Value(logForeground) <= Value(foreground))
        return 1.0 - 0.5 / linDataSize;
    logarithmic = true;
    if (i >= Value(logForeground))
        return 0.99999;
    float index = logOffset;
    if (logSlope != 0.0)
        index += logSlope * log(DISTANCE(i, background));
    return clamp(index / float(logDataSize), 0.0, 1.0);
}

// Software renderers take all ways through a shader for each pixel, so that a look into a table is
// worth saving: one into each, and none below a condition.
void main()
{
    vec2 pixel = floor((start + pixelStep * floor(f_texcoord)) * inverseDivisor);
    vec2 centre = (firstCentre + pixel) * inverseSize;
    Value i = texture(textureImg, centre).r;
    uint m = texture(textureMask, centre).r;

    bool logarithmic;
    float x = tableCoordinate(i, logarithmic);
    vec4 linear = texture(linData, x);
    vec4 logarithm = texture(logData, x);
    color = logarithmic ? logarithm : linear;
    if (highlightSaturated && i >= Value(countCutoff))
        color = saturatedColor;
    if ((m & 1u) != 0u)
        color = vec4(0.0, 0.0, 0.0, 1.0);
    if (highlightDefective && (m & 30u) != 0u)
        color = defectiveColor;
}
