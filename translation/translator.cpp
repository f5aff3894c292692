#include "translation/translator.h"

#include "translation/back_ends.h"
#include "translation/front_end.h"
#include "translation/hlsl_words.h"
#include "translation/precision.h"
#include "translation/spirv_module.h"

namespace patina {

using namespace detail;

namespace {

class SpirvTranslator : public ShaderTranslator {
public:
    std::vector<TranslatedProgram> translate(ProgramStage stage, std::string_view program,
                                             const std::vector<ShaderTarget>& targets) const override {
        SpirvModule module(compileCg(stage, program));
        renameAll(module, nameInCg);
        restorePrecision(module);
        const std::vector<SpirvParameter> parameters = readParameters(module, stage);
        placeParameters(module, stage, parameters);
        std::vector<TranslatedProgram> translated;
        translated.reserve(targets.size());
        for (const ShaderTarget& target : targets) {
            translated.push_back(writeTarget(stage, module, parameters, target));
        }
        return translated;
    }
};

} // namespace

std::unique_ptr<ShaderTranslator> makeTranslator() { return std::make_unique<SpirvTranslator>(); }

} // namespace patina
