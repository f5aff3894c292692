#include "shadergraph/register_table.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <array>
#include <cstddef>

namespace patina {

using namespace detail;

namespace {

// direction, semantic, suffix, registers, stage, flag
constexpr std::array<RegisterEntry, 18> registerTable = {{
    {0, "UNKNOWN", "", 1, 0, 1},
    {0, "ATTR", "", 16, 0, 1},
    {0, "register( c", " )", 1024, 0, 1},
    {0, "TEXUNIT", "", 4, 0, 0},
    {1, "POSITION", "", 1, 0, 1},
    {1, "PSIZE", "", 1, 0, 1},
    {1, "FOG", "", 1, 0, 1},
    {1, "COLOR", "", 2, 0, 0},
    {1, "BCOLOR", "", 2, 0, 1},
    {1, "TEXCOORD", "", 10, 0, 1},
    {0, "WPOS", "", 1, 1, 1},
    {0, "COLOR", "", 2, 1, 1},
    {0, "FACE", "", 1, 1, 1},
    {0, "FOG", "", 1, 1, 1},
    {0, "TEXCOORD", "", 10, 1, 1},
    {0, "TEXUNIT", "", 16, 1, 0},
    {1, "COLOR", "", 4, 1, 0},
    {1, "DEPTH", "", 1, 1, 1},
}};

} // namespace

const RegisterEntry& detail::registerEntry(std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= registerTable.size()) {
        throw ShaderError("invalid register type");
    }
    return registerTable[static_cast<std::size_t>(index)];
}

std::string registerText(const RegisterReference& reference) {
    const RegisterEntry& entry = registerEntry(reference.index);
    return joinText(
        {entry.semantic, entry.registerCount > 1 ? std::to_string(reference.number) : "", entry.suffix});
}

} // namespace patina
