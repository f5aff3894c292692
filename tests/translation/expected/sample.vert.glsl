#version 330

uniform mat4 worldViewProjection;
uniform float Scale;

layout(location = 0) in vec4 position;
layout(location = 3) in vec2 map1;
layout(location = 2) in vec4 Wear;
out vec2 interpolant0;
out vec4 interpolant1;

void scale(vec2 in_uv, float in_scale, out vec2 out_uv)
{
    out_uv = in_uv * in_scale;
}

void _main(vec4 position_1, vec2 map1_1, vec4 Wear_1, out vec4 clipPosition, out vec2 interpolant0_1, out vec4 interpolant1_1)
{
    clipPosition = position_1 * worldViewProjection;
    vec2 param = map1_1;
    float param_1 = Scale;
    vec2 param_2;
    scale(param, param_1, param_2);
    interpolant0_1 = param_2;
    interpolant1_1 = Wear_1;
}

void main()
{
    vec4 position_1 = position;
    vec2 map1_1 = map1;
    vec4 Wear_1 = Wear;
    vec4 param = position_1;
    vec2 param_1 = map1_1;
    vec4 param_2 = Wear_1;
    vec4 param_3;
    vec2 param_4;
    vec4 param_5;
    _main(param, param_1, param_2, param_3, param_4, param_5);
    vec4 clipPosition = param_3;
    vec2 interpolant0_1 = param_4;
    vec4 interpolant1_1 = param_5;
    gl_Position = clipPosition;
    interpolant0 = interpolant0_1;
    interpolant1 = interpolant1_1;
}

