#include "value_noise_node.h"

namespace example {

namespace {

// The four corners of a cell are hashed at once, as the components of a vector. Cubing modulo 251 permutes
// the numbers from 0 to 250, since 3 and 250 have no common factor. Up to a million cells from the origin,
// every step yields integers that a float holds exactly; the half that is added before a division keeps the
// quotient clear of the next integer, however the machine rounds it.
constexpr Pattern valueNoise = {"out_noise", "noise", "valueNoise",
                                "\tfloat2 cell = floor( uv );\n"
                                "\tfloat2 weight = uv - cell;\n"
                                "\tweight = weight*weight*( 3.0 - 2.0*weight );\n"
                                "\tfloat4 x = cell.x + float4( 0.0, 1.0, 0.0, 1.0 );\n"
                                "\tfloat4 y = cell.y + float4( 0.0, 0.0, 1.0, 1.0 );\n"
                                "\tfloat4 value = x + 87.0;\n"
                                "\tvalue -= floor( ( value + 0.5 )/251.0 )*251.0;\n"
                                "\tfloat4 square = value*value;\n"
                                "\tsquare -= floor( ( square + 0.5 )/251.0 )*251.0;\n"
                                "\tvalue = value*square + y;\n"
                                "\tvalue -= floor( ( value + 0.5 )/251.0 )*251.0;\n"
                                "\tsquare = value*value;\n"
                                "\tsquare -= floor( ( square + 0.5 )/251.0 )*251.0;\n"
                                "\tvalue *= square;\n"
                                "\tvalue -= floor( ( value + 0.5 )/251.0 )*251.0;\n"
                                "\tfloat2 sides = lerp( value.xz, value.yw, weight.x );\n"
                                "\tout_noise = lerp( sides.x, sides.y, weight.y )/250.0;\n"};

} // namespace

ValueNoiseNode::ValueNoiseNode() : PatternNode(staticTypeName(), valueNoise) { setName("Noise"); }

} // namespace example
