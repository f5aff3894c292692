#version 330

uniform sampler2D Paint;
uniform vec3 Tint;
uniform mat4x3 Turn;
uniform float Weights[3];

in vec4 interpolant0;
layout(location = 0) out vec4 colour;

vec3 h3tex2D(sampler2D in_sampler, vec2 in_uv)
{
    vec3 _37 = texture(in_sampler, in_uv).xyz;
    return _37;
}

void tint(vec2 in_uv, sampler2D in_sampler, vec3 in_tint, out vec3 out_colour)
{
    vec2 param = in_uv;
    out_colour = h3tex2D(in_sampler, param) * in_tint;
}

void _main(vec4 interpolant0_1, out vec4 colour_1)
{
    vec2 param = interpolant0_1.xy;
    vec3 param_1 = Tint;
    vec3 param_2;
    tint(param, Paint, param_1, param_2);
    vec3 tinted = param_2;
    colour_1 = vec4((Turn * interpolant0_1) + (tinted * Weights[1]), 1.0);
}

void main()
{
    vec4 interpolant0_1 = interpolant0;
    vec4 param = interpolant0_1;
    vec4 param_1;
    _main(param, param_1);
    vec4 colour_1 = param_1;
    colour = colour_1;
}

