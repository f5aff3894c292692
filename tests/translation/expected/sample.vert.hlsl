cbuffer Uniforms : register(b0)
{
    row_major float4x4 worldViewProjection : packoffset(c0);
    float Scale : packoffset(c6);
};


static float4 gl_Position;
static float4 position;
static float2 map1;
static float4 Wear;
static float2 interpolant0;
static float4 interpolant1;

struct SPIRV_Cross_Input
{
    float4 position : ATTR0;
    float4 Wear : ATTR2;
    float2 map1 : ATTR3;
};

struct SPIRV_Cross_Output
{
    float4 interpolant1 : TEXCOORD0;
    float2 interpolant0 : TEXCOORD1;
    float4 gl_Position : SV_Position;
};

void scale(float2 in_uv, float in_scale, out float2 out_uv)
{
    out_uv = in_uv * in_scale;
}

void _main(float4 position_1, float2 map1_1, float4 Wear_1, out float4 clipPosition, out float2 interpolant0_1, out float4 interpolant1_1)
{
    clipPosition = mul(worldViewProjection, position_1);
    float2 param = map1_1;
    float param_1 = Scale;
    float2 param_2;
    scale(param, param_1, param_2);
    interpolant0_1 = param_2;
    interpolant1_1 = Wear_1;
}

void vert_main()
{
    float4 position_1 = position;
    float2 map1_1 = map1;
    float4 Wear_1 = Wear;
    float4 param = position_1;
    float2 param_1 = map1_1;
    float4 param_2 = Wear_1;
    float4 param_3;
    float2 param_4;
    float4 param_5;
    _main(param, param_1, param_2, param_3, param_4, param_5);
    float4 clipPosition = param_3;
    float2 interpolant0_1 = param_4;
    float4 interpolant1_1 = param_5;
    gl_Position = clipPosition;
    interpolant0 = interpolant0_1;
    interpolant1 = interpolant1_1;
}

SPIRV_Cross_Output main(SPIRV_Cross_Input stage_input)
{
    position = stage_input.position;
    map1 = stage_input.map1;
    Wear = stage_input.Wear;
    vert_main();
    SPIRV_Cross_Output stage_output;
    stage_output.gl_Position = gl_Position;
    stage_output.interpolant0 = interpolant0;
    stage_output.interpolant1 = interpolant1;
    return stage_output;
}
