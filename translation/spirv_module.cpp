#include "translation/spirv_module.h"

#include <spirv.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace patina::detail {

namespace {

constexpr std::size_t headerSize = 5;
constexpr std::size_t boundIndex = 3; // of the word in the header that every id is below
constexpr std::uint32_t opcodeBits = 16;

constexpr const char* blockName = "Uniforms";
constexpr const char* blockInstanceName = "uniforms";
constexpr std::string_view entryPointName = "main";

bool is(const SpirvInstruction& instruction, spv::Op opcode) {
    return instruction.opcode == static_cast<std::uint32_t>(opcode);
}

bool isUniform(const SpirvParameter& parameter) { return parameter.kind == ParameterKind::Uniform; }

/// The text that begins at an operand: four letters to a word, the first in the lowest byte.
std::string textAt(const std::vector<std::uint32_t>& operands, std::size_t index) {
    std::string text;
    for (; index < operands.size(); ++index) {
        for (std::uint32_t shift = 0; shift < 32; shift += 8) {
            const char letter = static_cast<char>((operands[index] >> shift) & 0xFFU);
            if (letter == '\0') {
                return text;
            }
            text += letter;
        }
    }
    return text;
}

std::vector<std::uint32_t> textWords(std::string_view text) {
    std::vector<std::uint32_t> words(text.size() / 4 + 1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        words[i / 4] |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << (i % 4 * 8);
    }
    return words;
}

/// Replaces the text that begins at an operand and ends the instruction.
void setName(SpirvInstruction& instruction, std::size_t index, std::string_view name) {
    const std::vector<std::uint32_t> words = textWords(name);
    instruction.operands.resize(index);
    instruction.operands.insert(instruction.operands.end(), words.begin(), words.end());
}

SpirvInstruction decorate(std::uint32_t id, spv::Decoration decoration, std::vector<std::uint32_t> values) {
    values.insert(values.begin(), {id, static_cast<std::uint32_t>(decoration)});
    return {static_cast<std::uint32_t>(spv::OpDecorate), std::move(values)};
}

/// What the instructions before the first function say, by id.
class ModuleIndex {
public:
    explicit ModuleIndex(const SpirvModule& module) {
        for (const SpirvInstruction& instruction : module.instructions) {
            if (is(instruction, spv::OpFunction)) {
                break;
            }
            add(instruction);
        }
    }

    std::string name(std::uint32_t id) const { return find(names_, id); }
    std::string memberName(std::uint32_t type, std::uint32_t member) const {
        const auto found = memberNames_.find({type, member});
        return found != memberNames_.end() ? found->second : "";
    }
    std::string semantic(std::uint32_t id) const { return find(semantics_, id); }

    std::optional<std::uint32_t> decoration(std::uint32_t id, spv::Decoration wanted) const {
        const auto found = decorations_.find({id, static_cast<std::uint32_t>(wanted)});
        return found != decorations_.end() ? std::optional(found->second) : std::nullopt;
    }
    std::optional<std::uint32_t> memberDecoration(std::uint32_t type, std::uint32_t member,
                                                  spv::Decoration wanted) const {
        const auto found = memberDecorations_.find({{type, member}, static_cast<std::uint32_t>(wanted)});
        return found != memberDecorations_.end() ? std::optional(found->second) : std::nullopt;
    }

    const SpirvInstruction& type(std::uint32_t id) const { return *definitions_.at(id); }
    std::uint32_t constant(std::uint32_t id) const { return definitions_.at(id)->operands[2]; }
    const std::vector<const SpirvInstruction*>& variables() const { return variables_; }

    /// What a pointer points to.
    std::uint32_t pointee(std::uint32_t pointer) const { return type(pointer).operands[2]; }

    ShaderType shaderType(std::uint32_t id, bool isRelaxed) const {
        const SpirvInstruction& definition = type(id);
        ShaderType result;
        switch (static_cast<spv::Op>(definition.opcode)) {
        case spv::OpTypeFloat:
            result.componentType = isRelaxed ? ComponentType::Half : ComponentType::Float;
            return result;
        case spv::OpTypeInt:
            // Cg has no unsigned integers: they stand for the booleans of a block
            result.componentType = definition.operands[2] != 0 ? ComponentType::Int : ComponentType::Bool;
            return result;
        case spv::OpTypeBool:
            result.componentType = ComponentType::Bool;
            return result;
        case spv::OpTypeVector:
            result = shaderType(definition.operands[1], isRelaxed);
            result.columns = static_cast<std::int32_t>(definition.operands[2]);
            return result;
        case spv::OpTypeMatrix:
            // a column of the module is a row of Cg
            result = shaderType(definition.operands[1], isRelaxed);
            result.rows = static_cast<std::int32_t>(definition.operands[2]);
            return result;
        case spv::OpTypeArray:
            result = shaderType(definition.operands[1], isRelaxed);
            result.arraySize = static_cast<std::int32_t>(constant(definition.operands[2]));
            return result;
        case spv::OpTypeSampledImage:
            return shaderType(definition.operands[1], isRelaxed);
        case spv::OpTypeImage:
            result.componentType = samplerType(definition.operands[2]);
            return result;
        default:
            return result;
        }
    }

private:
    using Member = std::pair<std::uint32_t, std::uint32_t>;

    static std::string find(const std::unordered_map<std::uint32_t, std::string>& texts, std::uint32_t id) {
        const auto found = texts.find(id);
        return found != texts.end() ? found->second : "";
    }

    static ComponentType samplerType(std::uint32_t dimension) {
        switch (static_cast<spv::Dim>(dimension)) {
        case spv::Dim1D:
            return ComponentType::Sampler1D;
        case spv::Dim3D:
            return ComponentType::Sampler3D;
        case spv::DimCube:
            return ComponentType::SamplerCube;
        default:
            return ComponentType::Sampler2D;
        }
    }

    void add(const SpirvInstruction& instruction) {
        const std::vector<std::uint32_t>& operands = instruction.operands;
        const auto valueAt = [&](std::size_t index) { return operands.size() > index ? operands[index] : 0; };
        switch (static_cast<spv::Op>(instruction.opcode)) {
        case spv::OpName:
            names_[operands[0]] = textAt(operands, 1);
            break;
        case spv::OpMemberName:
            memberNames_[{operands[0], operands[1]}] = textAt(operands, 2);
            break;
        case spv::OpDecorate:
            decorations_[{operands[0], operands[1]}] = valueAt(2);
            break;
        case spv::OpMemberDecorate:
            // cppcheck-suppress constStatement ; it takes the braces of a key for another array
            memberDecorations_[{{operands[0], operands[1]}, operands[2]}] = valueAt(3);
            break;
        case spv::OpDecorateString:
            semantics_[operands[0]] = textAt(operands, 2);
            break;
        case spv::OpVariable:
            variables_.push_back(&instruction);
            break;
        case spv::OpConstant:
            definitions_[operands[1]] = &instruction;
            break;
        default:
            if (instruction.opcode >= spv::OpTypeVoid && instruction.opcode <= spv::OpTypeFunction) {
                definitions_[operands[0]] = &instruction;
            }
        }
    }

    std::unordered_map<std::uint32_t, std::string> names_;
    std::map<Member, std::string> memberNames_;
    std::unordered_map<std::uint32_t, std::string> semantics_;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> decorations_;
    std::map<std::pair<Member, std::uint32_t>, std::uint32_t> memberDecorations_;
    std::unordered_map<std::uint32_t, const SpirvInstruction*> definitions_;
    std::vector<const SpirvInstruction*> variables_;
};

/// Semantics of inputs and outputs, and the location of the first register of each.
struct SemanticRow {
    const char* semantic;
    std::optional<ProgramStage> stage; ///< nothing for what the vertex program hands to the fragment program
    spv::StorageClass storage;
    std::uint32_t firstLocation;
};

// what is handed over has TEXCOORD0 to TEXCOORD9 first
constexpr SemanticRow semanticRows[] = {
    {"ATTR", ProgramStage::Vertex, spv::StorageClassInput, 0},
    {"COLOR", ProgramStage::Fragment, spv::StorageClassOutput, 0},
    {"TEXCOORD", std::nullopt, spv::StorageClassOutput, 0},
    {"COLOR", std::nullopt, spv::StorageClassOutput, 10},
    {"BCOLOR", std::nullopt, spv::StorageClassOutput, 12},
    {"FOG", std::nullopt, spv::StorageClassOutput, 14},
};

std::uint32_t locationOf(const std::string& semantic, ProgramStage stage, spv::StorageClass storage) {
    const std::size_t digits = std::min(semantic.find_first_of("0123456789"), semantic.size());
    const std::string prefix = semantic.substr(0, digits);
    const auto matches = [&](const SemanticRow& row) {
        const bool isHandedOver =
            (stage == ProgramStage::Vertex) == (storage == spv::StorageClassOutput) && !row.stage;
        return prefix == row.semantic && (isHandedOver || (row.stage == stage && row.storage == storage));
    };
    const auto* row = std::find_if(std::begin(semanticRows), std::end(semanticRows), matches);
    if (row == std::end(semanticRows)) {
        throw TranslationError("what Cg calls \"" + semantic + "\" cannot be translated", 0);
    }
    return row->firstLocation +
           (digits < semantic.size() ? static_cast<std::uint32_t>(std::stoul(semantic.substr(digits))) : 0);
}

std::string builtInName(std::uint32_t builtIn, const std::string& parameter) {
    switch (static_cast<spv::BuiltIn>(builtIn)) {
    case spv::BuiltInPosition:
        return "Position";
    case spv::BuiltInPointSize:
        return "PointSize";
    case spv::BuiltInFragCoord:
        return "FragCoord";
    case spv::BuiltInFragDepth:
        return "FragDepth";
    case spv::BuiltInFrontFacing:
        return "FrontFacing";
    default:
        throw TranslationError(
            "the built-in value that \"" + parameter + "\" stands for cannot be translated", 0);
    }
}

ParameterKind kindOf(ProgramStage stage, spv::StorageClass storage, bool isBuiltIn) {
    const bool isInput = storage == spv::StorageClassInput;
    if (stage == ProgramStage::Vertex) {
        return isInput     ? ParameterKind::Attribute
               : isBuiltIn ? ParameterKind::Output
                           : ParameterKind::Interpolant;
    }
    return isInput ? ParameterKind::Interpolant : ParameterKind::Output;
}

void readBlock(const ModuleIndex& index, std::uint32_t variable, std::uint32_t block,
               std::vector<SpirvParameter>& parameters) {
    const std::vector<std::uint32_t>& members = index.type(block).operands;
    for (std::uint32_t member = 0; member + 1 < members.size(); ++member) {
        SpirvParameter parameter;
        parameter.name = index.memberName(block, member);
        const bool isRelaxed =
            index.memberDecoration(block, member, spv::DecorationRelaxedPrecision).has_value();
        parameter.type = index.shaderType(members[member + 1], isRelaxed);
        parameter.id = variable;
        parameter.member = member;
        parameter.offset = index.memberDecoration(block, member, spv::DecorationOffset).value_or(0);
        parameters.push_back(std::move(parameter));
    }
}

} // namespace

SpirvModule::SpirvModule(const std::vector<std::uint32_t>& words)
    : header(words.begin(), words.begin() + headerSize) {
    for (std::size_t at = headerSize; at < words.size();) {
        const std::uint32_t count = words[at] >> opcodeBits;
        const auto begin = words.begin() + static_cast<std::ptrdiff_t>(at);
        instructions.push_back(
            {words[at] & 0xFFFFU, {begin + 1, begin + static_cast<std::ptrdiff_t>(count)}});
        at += count;
    }
}

std::vector<std::uint32_t> SpirvModule::words() const {
    std::vector<std::uint32_t> result = header;
    for (const auto& [opcode, operands] : instructions) {
        result.push_back(static_cast<std::uint32_t>(operands.size() + 1) << opcodeBits | opcode);
        result.insert(result.end(), operands.begin(), operands.end());
    }
    return result;
}

std::uint32_t SpirvModule::newId() { return header[boundIndex]++; }

std::set<std::string, std::less<>> SpirvModule::names() const {
    std::set<std::string, std::less<>> result;
    for (const SpirvInstruction& instruction : instructions) {
        if (is(instruction, spv::OpName)) {
            result.insert(textAt(instruction.operands, 1));
        } else if (is(instruction, spv::OpMemberName)) {
            result.insert(textAt(instruction.operands, 2));
        }
    }
    return result;
}

namespace {

/// The new name of a thing: of a function, "tint(vf2;vf3;", that before its types.
std::string renamed(const std::string& text, const std::function<std::string(std::string_view)>& rename) {
    const std::size_t end = std::min(text.find('('), text.size());
    const std::string_view name = std::string_view(text).substr(0, end);
    return name == entryPointName ? text : rename(name) + text.substr(end);
}

} // namespace

void renameAll(SpirvModule& module, const std::function<std::string(std::string_view)>& rename) {
    for (SpirvInstruction& instruction : module.instructions) {
        if (is(instruction, spv::OpName)) {
            setName(instruction, 1, renamed(textAt(instruction.operands, 1), rename));
        } else if (is(instruction, spv::OpMemberName)) {
            setName(instruction, 2, renamed(textAt(instruction.operands, 2), rename));
        }
    }
}

std::vector<SpirvParameter> readParameters(const SpirvModule& module, ProgramStage stage) {
    const ModuleIndex index(module);
    std::vector<SpirvParameter> parameters;
    for (const SpirvInstruction* variable : index.variables()) {
        const std::uint32_t id = variable->operands[1];
        const std::uint32_t type = index.pointee(variable->operands[0]);
        const auto storage = static_cast<spv::StorageClass>(variable->operands[2]);
        if (storage == spv::StorageClassUniform) {
            readBlock(index, id, type, parameters);
            continue;
        }
        SpirvParameter parameter;
        parameter.name = index.name(id);
        parameter.id = id;
        parameter.type =
            index.shaderType(type, index.decoration(id, spv::DecorationRelaxedPrecision).has_value());
        if (storage == spv::StorageClassUniformConstant) {
            parameter.kind = ParameterKind::Sampler;
            parameter.number = index.decoration(id, spv::DecorationBinding).value_or(0);
        } else if (storage == spv::StorageClassInput || storage == spv::StorageClassOutput) {
            const auto builtIn = index.decoration(id, spv::DecorationBuiltIn);
            parameter.kind = kindOf(stage, storage, builtIn.has_value());
            parameter.semantic = index.semantic(id);
            if (builtIn) {
                parameter.builtIn = builtInName(*builtIn, parameter.name);
            } else {
                parameter.number = locationOf(parameter.semantic, stage, storage);
            }
        } else {
            continue;
        }
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

void nameUniformBlock(SpirvModule& module, const std::vector<SpirvParameter>& parameters) {
    const auto uniform = std::find_if(parameters.begin(), parameters.end(), isUniform);
    if (uniform == parameters.end()) {
        return;
    }
    const ModuleIndex index(module);
    const auto isBlock = [&](const SpirvInstruction* entry) { return entry->operands[1] == uniform->id; };
    const auto entry = std::find_if(index.variables().begin(), index.variables().end(), isBlock);
    const std::uint32_t type = index.pointee((*entry)->operands[0]);
    for (SpirvInstruction& instruction : module.instructions) {
        if (is(instruction, spv::OpName) && instruction.operands[0] == type) {
            setName(instruction, 1, blockName);
        } else if (is(instruction, spv::OpName) && instruction.operands[0] == uniform->id) {
            setName(instruction, 1, blockInstanceName);
        }
    }
}

void placeParameters(SpirvModule& module, ProgramStage stage, const std::vector<SpirvParameter>& parameters) {
    std::vector<SpirvInstruction> places;
    std::unordered_map<std::uint32_t, bool> isPlaced;
    for (const SpirvParameter& parameter : parameters) {
        if (!parameter.builtIn.empty() || !isPlaced.try_emplace(parameter.id, true).second) {
            continue;
        }
        if (parameter.kind == ParameterKind::Uniform || parameter.kind == ParameterKind::Sampler) {
            const bool isBlock = isUniform(parameter);
            places.push_back(decorate(parameter.id, spv::DecorationDescriptorSet, {descriptorSet(stage)}));
            places.push_back(decorate(parameter.id, spv::DecorationBinding,
                                      {isBlock ? uniformBlockBinding : parameter.number}));
        } else {
            places.push_back(decorate(parameter.id, spv::DecorationLocation, {parameter.number}));
        }
    }
    const auto isReplaced = [&](const SpirvInstruction& instruction) {
        const bool isPlace =
            is(instruction, spv::OpDecorate) && (instruction.operands[1] == spv::DecorationDescriptorSet ||
                                                 instruction.operands[1] == spv::DecorationBinding ||
                                                 instruction.operands[1] == spv::DecorationLocation);
        return isPlace || is(instruction, spv::OpDecorateString) || is(instruction, spv::OpExtension);
    };
    std::erase_if(module.instructions, isReplaced);
    const auto isDecorationOf = [](const SpirvInstruction& instruction) {
        return is(instruction, spv::OpDecorate) || is(instruction, spv::OpTypeVoid);
    };
    const auto firstDecoration =
        std::find_if(module.instructions.begin(), module.instructions.end(), isDecorationOf);
    module.instructions.insert(firstDecoration, places.begin(), places.end());
}

namespace {

/// Turns the instructions about one block into those about a variable for each of its members.
class BlockSplitter {
public:
    BlockSplitter(SpirvModule& module, std::vector<SpirvParameter>& parameters, std::uint32_t block)
        : module_(module), block_(block), index_(module) {
        for (const SpirvInstruction* variable : index_.variables()) {
            if (variable->operands[1] == block) {
                pointer_ = variable->operands[0];
                type_ = index_.pointee(pointer_);
            }
        }
        for (SpirvParameter& parameter : parameters) {
            if (parameter.id == block) {
                const std::uint32_t variable = module.newId();
                parameter.id = variable;
                variables_.push_back(
                    {variable, module.newId(), index_.type(type_).operands[parameter.member + 1]});
            }
        }
    }

    void run() {
        std::vector<SpirvInstruction> changed;
        bool isGlobal = true;
        for (SpirvInstruction instruction : module_.instructions) {
            if (isGlobal && is(instruction, spv::OpFunction)) {
                isGlobal = false;
                appendVariables(changed);
            }
            if (change(instruction)) {
                changed.push_back(std::move(instruction));
            }
        }
        module_.instructions = std::move(changed);
    }

private:
    struct Variable {
        std::uint32_t id;
        std::uint32_t pointer;
        std::uint32_t type;
    };

    static constexpr auto plainStorage = static_cast<std::uint32_t>(spv::StorageClassUniformConstant);

    void appendVariables(std::vector<SpirvInstruction>& instructions) const {
        for (const Variable& variable : variables_) {
            instructions.push_back({static_cast<std::uint32_t>(spv::OpTypePointer),
                                    {variable.pointer, plainStorage, variable.type}});
            instructions.push_back(
                {static_cast<std::uint32_t>(spv::OpVariable), {variable.pointer, variable.id, plainStorage}});
        }
    }

    /// Gives whether the instruction stays.
    bool change(SpirvInstruction& instruction) const {
        std::vector<std::uint32_t>& operands = instruction.operands;
        switch (static_cast<spv::Op>(instruction.opcode)) {
        case spv::OpMemberName:
            return changeMember(instruction, spv::OpName);
        case spv::OpMemberDecorate:
            return (operands[0] != type_ || operands[2] == spv::DecorationRelaxedPrecision) &&
                   changeMember(instruction, spv::OpDecorate);
        case spv::OpName:
        case spv::OpDecorate:
        case spv::OpTypeStruct:
            return operands[0] != type_ && operands[0] != block_;
        case spv::OpTypePointer:
            if (operands[1] == spv::StorageClassUniform) {
                operands[1] = plainStorage;
            }
            return operands[0] != pointer_;
        case spv::OpVariable:
            return operands[1] != block_;
        case spv::OpAccessChain:
            if (operands[2] == block_) {
                // the pointer to a variable, and then what was behind the member
                operands[2] = variables_.at(index_.constant(operands[3])).id;
                operands.erase(operands.begin() + 3);
            }
            return true;
        default:
            return true;
        }
    }

    bool changeMember(SpirvInstruction& instruction, spv::Op opcode) const {
        std::vector<std::uint32_t>& operands = instruction.operands;
        if (operands[0] == type_) {
            operands[0] = variables_.at(operands[1]).id;
            operands.erase(operands.begin() + 1);
            instruction.opcode = static_cast<std::uint32_t>(opcode);
        }
        return true;
    }

    SpirvModule& module_;
    std::uint32_t block_;
    const ModuleIndex index_;
    std::uint32_t pointer_ = 0;
    std::uint32_t type_ = 0;
    std::vector<Variable> variables_;
};

} // namespace

void splitUniformBlock(SpirvModule& module, std::vector<SpirvParameter>& parameters) {
    const auto uniform = std::find_if(parameters.begin(), parameters.end(), isUniform);
    if (uniform != parameters.end()) {
        BlockSplitter(module, parameters, uniform->id).run();
    }
}

} // namespace patina::detail
