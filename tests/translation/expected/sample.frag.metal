#pragma clang diagnostic ignored "-Wmissing-prototypes"

#include <metal_stdlib>
#include <simd/simd.h>

using namespace metal;

struct Uniforms
{
    char _m0_pad[32];
    float3 Tint;
    char _m1_pad[16];
    float4x3 Turn;
    char _m2_pad[32];
    float4 Weights[3];
};

struct main0_out
{
    float4 colour [[color(0)]];
};

struct main0_in
{
    float4 interpolant0 [[user(locn2)]];
};

static inline __attribute__((always_inline))
float3 h3tex2D(texture2d<float> in_sampler, sampler in_samplerSmplr, thread const float2& in_uv)
{
    float3 _37 = in_sampler.sample(in_samplerSmplr, in_uv).xyz;
    return _37;
}

static inline __attribute__((always_inline))
void tint(thread const float2& in_uv, texture2d<float> in_sampler, sampler in_samplerSmplr, thread const float3& in_tint, thread float3& out_colour)
{
    float2 param = in_uv;
    out_colour = h3tex2D(in_sampler, in_samplerSmplr, param) * in_tint;
}

static inline __attribute__((always_inline))
void _main(thread const float4& interpolant0, thread float4& colour, texture2d<float> Paint, sampler PaintSmplr, constant Uniforms& uniforms)
{
    float2 param = interpolant0.xy;
    float3 param_1 = uniforms.Tint;
    float3 param_2;
    tint(param, Paint, PaintSmplr, param_1, param_2);
    float3 tinted = param_2;
    colour = float4((uniforms.Turn * interpolant0) + (tinted * uniforms.Weights[1].x), 1.0);
}

fragment main0_out main0(main0_in in [[stage_in]], constant Uniforms& uniforms [[buffer(0)]], texture2d<float> Paint [[texture(1)]], sampler PaintSmplr [[sampler(1)]])
{
    main0_out out = {};
    float4 interpolant0 = in.interpolant0;
    float4 param = interpolant0;
    float4 param_1;
    _main(param, param_1, Paint, PaintSmplr, uniforms);
    float4 colour = param_1;
    out.colour = colour;
    return out;
}

