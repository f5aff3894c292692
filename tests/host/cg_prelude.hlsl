// Cg's sampling functions in terms of HLSL's, so that a front end for HLSL can read Cg programs.

float3 f3tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xyz; }
float4 f4tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ); }
float3 f3tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xyz; }
float4 f4tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ); }
half3 h3tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ).xyz; }
half4 h4tex1D( sampler1D in_sampler, float in_uv ) { return tex1D( in_sampler, in_uv ); }
half3 h3tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ).xyz; }
half4 h4tex2D( sampler2D in_sampler, float2 in_uv ) { return tex2D( in_sampler, in_uv ); }
