// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The height of one corner of the mesh: the intensity above the background, linear up to the
// foreground, logarithmic beyond it. The includer defines the types Sampler, Value (of a pixel) and
// Level (of a uniform), and DISTANCE.

uniform mat4 transformationMatrix;
uniform mat4 selectRegionMatrix;
uniform Sampler textureImg;
uniform Level foreground;
uniform Level background;
uniform Level logForeground;
// Height of the foreground; the logarithmic foreground is twice as high.
uniform float globalScale = 0.5;

in vec2 coord2d;
out float intensityF;
flat out float foregroundF;
flat out float logForegroundF;

float aboveBackground(Value i)
{
    return i > Value(background) ? DISTANCE(i, background) : 0.0;
}

void main()
{
    vec4 coord4d = selectRegionMatrix * vec4(coord2d, 0.0, 1.0);
    Value i = texture(textureImg, coord4d.xy).r;
    float intensity = aboveBackground(i);

    float linearRange = max(1.0, aboveBackground(Value(foreground)));
    float decades = max(1.0, aboveBackground(Value(logForeground))) / max(1.0, log(linearRange));
    float _logSlope = globalScale / log(max(1.0001, decades));
    float _logOffset = -_logSlope * log(linearRange);

    foregroundF = globalScale;
    logForegroundF = 2.0 * globalScale;
    intensityF = intensity * (globalScale / linearRange);
    if (intensity > float(Value(foreground)))
        intensityF = _logSlope * log(intensity) + _logOffset + globalScale;
    gl_Position = transformationMatrix * vec4(coord4d.xy, intensityF, 1.0);
}
