// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour of the mesh by its height: light grey to white up to the foreground, from there to
// blue at the logarithmic foreground.

in float intensityF;
flat in float foregroundF;
flat in float logForegroundF;
out vec4 color;

void main()
{
    const vec4 low = vec4(0.7, 0.7, 0.7, 1.0);
    const vec4 white = vec4(1.0, 1.0, 1.0, 1.0);
    const vec4 blue = vec4(0.0, 0.0, 1.0, 1.0);
    if (intensityF <= foregroundF)
        color = mix(low, white, intensityF / foregroundF);
    else if (intensityF <= logForegroundF)
        color = mix(white, blue, (intensityF - foregroundF) / (logForegroundF - foregroundF));
    else
        color = blue;
    if (!gl_FrontFacing)
        color *= 0.5;
}
