cbuffer Uniforms : register(b0)
{
    float3 Tint : packoffset(c2);
    row_major float4x3 Turn : packoffset(c4);
    float Weights[3] : packoffset(c10);
};

Texture2D<float4> Paint : register(t1);
SamplerState _Paint_sampler : register(s1);

static float4 interpolant0;
static float4 colour;

struct SPIRV_Cross_Input
{
    float4 interpolant0 : TEXCOORD2;
};

struct SPIRV_Cross_Output
{
    float4 colour : SV_Target0;
};

float3 h3tex2D(Texture2D<float4> in_sampler, SamplerState _in_sampler_sampler, float2 in_uv)
{
    float3 _37 = in_sampler.Sample(_in_sampler_sampler, in_uv).xyz;
    return _37;
}

void tint(float2 in_uv, Texture2D<float4> in_sampler, SamplerState _in_sampler_sampler, float3 in_tint, out float3 out_colour)
{
    float2 param = in_uv;
    out_colour = h3tex2D(in_sampler, _in_sampler_sampler, param) * in_tint;
}

void _main(float4 interpolant0_1, out float4 colour_1)
{
    float2 param = interpolant0_1.xy;
    float3 param_1 = Tint;
    float3 param_2;
    tint(param, Paint, _Paint_sampler, param_1, param_2);
    float3 tinted = param_2;
    colour_1 = float4(mul(interpolant0_1, Turn) + (tinted * Weights[1]), 1.0f);
}

void frag_main()
{
    float4 interpolant0_1 = interpolant0;
    float4 param = interpolant0_1;
    float4 param_1;
    _main(param, param_1);
    float4 colour_1 = param_1;
    colour = colour_1;
}

SPIRV_Cross_Output main(SPIRV_Cross_Input stage_input)
{
    interpolant0 = stage_input.interpolant0;
    frag_main();
    SPIRV_Cross_Output stage_output;
    stage_output.colour = colour;
    return stage_output;
}
