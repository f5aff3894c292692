// What Cg has and HLSL lacks, for the HLSL of Direct3D 9.

// matrices lie in memory row by row, as in Cg's constant registers
#pragma pack_matrix( row_major )

#define half min16float
#define half2 min16float2
#define half3 min16float3
#define half4 min16float4
#define fixed min10float
#define fixed2 min10float2
#define fixed3 min10float3
#define fixed4 min10float4
#define half1x1 min16float1x1
#define half1x2 min16float1x2
#define half1x3 min16float1x3
#define half1x4 min16float1x4
#define half2x1 min16float2x1
#define half2x2 min16float2x2
#define half2x3 min16float2x3
#define half2x4 min16float2x4
#define half3x1 min16float3x1
#define half3x2 min16float3x2
#define half3x3 min16float3x3
#define half3x4 min16float3x4
#define half4x1 min16float4x1
#define half4x2 min16float4x2
#define half4x3 min16float4x3
#define half4x4 min16float4x4
#define fixed1x1 min10float1x1
#define fixed1x2 min10float1x2
#define fixed1x3 min10float1x3
#define fixed1x4 min10float1x4
#define fixed2x1 min10float2x1
#define fixed2x2 min10float2x2
#define fixed2x3 min10float2x3
#define fixed2x4 min10float2x4
#define fixed3x1 min10float3x1
#define fixed3x2 min10float3x2
#define fixed3x3 min10float3x3
#define fixed3x4 min10float3x4
#define fixed4x1 min10float4x1
#define fixed4x2 min10float4x2
#define fixed4x3 min10float4x3
#define fixed4x4 min10float4x4

float f1tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).x; }
float2 f2tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xy; }
float3 f3tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xyz; }
float4 f4tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ); }
half h1tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).x; }
half2 h2tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xy; }
half3 h3tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xyz; }
half4 h4tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ); }
float f1tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).x; }
float2 f2tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xy; }
float3 f3tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xyz; }
float4 f4tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ); }
half h1tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).x; }
half2 h2tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xy; }
half3 h3tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xyz; }
half4 h4tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ); }
float f1tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).x; }
float2 f2tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).xy; }
float3 f3tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).xyz; }
float4 f4tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ); }
half h1tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).x; }
half2 h2tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).xy; }
half3 h3tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ).xyz; }
half4 h4tex3D( sampler3D in_sampler, float3 in_uv ) { return tex3D( in_sampler, in_uv ); }
float f1texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).x; }
float2 f2texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).xy; }
float3 f3texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).xyz; }
float4 f4texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ); }
half h1texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).x; }
half2 h2texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).xy; }
half3 h3texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ).xyz; }
half4 h4texCUBE( samplerCUBE in_sampler, float3 in_uv ) { return texCUBE( in_sampler, in_uv ); }
