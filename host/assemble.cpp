#include "host/assemble.h"

#include "host/generate.h"
#include "host/naming.h"
#include "host/registers.h"
#include "host/stages.h"
#include "host/verify.h"

#include <utility>

namespace patina {

AssembledShader assembleShader(const Material& material, const PrintOptions& options,
                               ColourWidth colourWidth) {
    Dataflow flow = joinGraph(material, generateGraph(material), nullptr, colourWidth);
    verifyCode(material, flow);
    StagedShader stages = placeInStages(material, flow);
    ShaderNames names = nameShader(material, flow, stages);
    RegisterAssignment registers = assignRegisters(material, flow, stages);
    return {material, std::move(flow), std::move(stages), std::move(names), std::move(registers), options};
}

} // namespace patina
