#include "nodemodel/port.h"

#include "nodemodel/shader_error.h"

namespace patina {

void Port::setComponentCount(std::uint32_t count) {
    componentCount = count;
    componentCountKnown = true;
    componentCountFixed = true;
}

void Port::setPrecision(std::uint32_t componentTypeCode) {
    precision = componentTypeCode;
    precisionKnown = true;
    precisionFixed = true;
}

std::uint32_t Port::getComponentCount() const {
    if (!componentCountKnown) {
        throw ShaderError("cannot read unknown component count");
    }
    return componentCount;
}

std::uint32_t Port::getPrecision() const {
    if (!precisionKnown) {
        throw ShaderError("cannot read unknown precision");
    }
    return precision;
}

} // namespace patina
