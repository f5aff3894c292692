#pragma clang diagnostic ignored "-Wmissing-prototypes"

#include <metal_stdlib>
#include <simd/simd.h>

using namespace metal;

struct Uniforms
{
    float4x4 worldViewProjection;
    char _m1_pad[32];
    float Scale;
};

struct main0_out
{
    float4 interpolant1 [[user(locn0)]];
    float2 interpolant0 [[user(locn1)]];
    float4 gl_Position [[position]];
};

struct main0_in
{
    float4 position [[attribute(0)]];
    float4 Wear [[attribute(2)]];
    float2 map1 [[attribute(3)]];
};

static inline __attribute__((always_inline))
void scale(thread const float2& in_uv, thread const float& in_scale, thread float2& out_uv)
{
    out_uv = in_uv * in_scale;
}

static inline __attribute__((always_inline))
void _main(thread const float4& position, thread const float2& map1, thread const float4& Wear, thread float4& clipPosition, thread float2& interpolant0, thread float4& interpolant1, constant Uniforms& uniforms)
{
    clipPosition = position * uniforms.worldViewProjection;
    float2 param = map1;
    float param_1 = uniforms.Scale;
    float2 param_2;
    scale(param, param_1, param_2);
    interpolant0 = param_2;
    interpolant1 = Wear;
}

vertex main0_out main0(main0_in in [[stage_in]], constant Uniforms& uniforms [[buffer(0)]])
{
    main0_out out = {};
    float4 position = in.position;
    float2 map1 = in.map1;
    float4 Wear = in.Wear;
    float4 param = position;
    float2 param_1 = map1;
    float4 param_2 = Wear;
    float4 param_3;
    float2 param_4;
    float4 param_5;
    _main(param, param_1, param_2, param_3, param_4, param_5, uniforms);
    float4 clipPosition = param_3;
    float2 interpolant0 = param_4;
    float4 interpolant1 = param_5;
    out.gl_Position = clipPosition;
    out.interpolant0 = interpolant0;
    out.interpolant1 = interpolant1;
    return out;
}

