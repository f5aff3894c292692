#include "translation/precision.h"

// the header tells then which instructions have results
#define SPV_ENABLE_UTILITY_CODE
#include <spirv.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace patina::detail {

namespace {

using Id = std::uint32_t;

/// Goes through the instructions of a module, in which everything but labels is defined before it is used.
class PrecisionReader {
public:
    void read(const SpirvInstruction& instruction) {
        const std::vector<std::uint32_t>& operands = instruction.operands;
        const auto opcode = static_cast<spv::Op>(instruction.opcode);
        switch (opcode) {
        case spv::OpDecorate:
            if (operands[1] == spv::DecorationRelaxedPrecision) {
                relaxed_.insert(operands[0]);
            }
            return;
        case spv::OpMemberDecorate:
            if (operands[2] == spv::DecorationRelaxedPrecision) {
                relaxedMembers_.insert({operands[0], operands[1]});
            }
            return;
        case spv::OpTypeFloat:
            floats_.insert(operands[0]);
            return;
        case spv::OpTypeVector:
        case spv::OpTypeMatrix:
        case spv::OpTypeArray:
            elements_[operands[0]] = operands[1];
            if (opcode != spv::OpTypeArray && floats_.contains(operands[1])) {
                floats_.insert(operands[0]);
            }
            return;
        case spv::OpTypePointer:
            pointees_[operands[0]] = operands[2];
            return;
        case spv::OpTypeStruct:
            members_[operands[0]] = {operands.begin() + 1, operands.end()};
            return;
        case spv::OpConstant:
            constants_[operands[1]] = operands[2];
            return;
        default:
            break;
        }
        bool hasResult = false;
        bool hasType = false;
        spv::HasResultAndType(opcode, &hasResult, &hasType);
        if (hasResult && hasType) {
            readValue(opcode, operands);
        }
    }

    /// Those that are of lower precision without reason.
    const std::set<Id>& tooLow() const { return tooLow_; }

private:
    void readValue(spv::Op opcode, const std::vector<std::uint32_t>& operands) {
        const auto [type, id] = std::pair{operands[0], operands[1]};
        const bool isConstant = opcode >= spv::OpConstantTrue && opcode <= spv::OpSpecConstantOp;
        if (!isConstant) {
            types_[id] = type;
        }
        if (opcode == spv::OpAccessChain) {
            readChain(operands);
        } else if (relaxed_.contains(id) && !mayBeLow(opcode, operands)) {
            relaxed_.erase(id);
            tooLow_.insert(id);
        }
    }

    /// The precision of what a pointer leads to: that of the last member on the way, or of the variable.
    void readChain(const std::vector<std::uint32_t>& operands) {
        bool isRelaxed = relaxed_.contains(operands[2]);
        Id type = pointees_.at(types_.at(operands[2]));
        for (const Id index : std::span(operands).subspan(3)) {
            const auto members = members_.find(type);
            if (members == members_.end()) {
                type = elements_.at(type);
                continue;
            }
            const std::uint32_t member = constants_.at(index);
            isRelaxed = relaxedMembers_.contains({type, member});
            type = members->second.at(member);
        }
        if (isRelaxed) {
            relaxed_.insert(operands[1]);
        } else if (relaxed_.erase(operands[1]) > 0) {
            tooLow_.insert(operands[1]);
        }
    }

    bool mayBeLow(spv::Op opcode, const std::vector<std::uint32_t>& operands) const {
        const auto isLow = [&](std::size_t first, std::size_t count) {
            const std::size_t begin = std::min(first, operands.size());
            const std::span<const Id> values =
                std::span(operands).subspan(begin, std::min(count, operands.size() - begin));
            return std::none_of(values.begin(), values.end(), [&](Id value) { return isFull(value); });
        };
        switch (opcode) {
        case spv::OpVariable:
        case spv::OpFunction:
        case spv::OpFunctionParameter:
            return true;
        case spv::OpLoad:
        case spv::OpFunctionCall:
            return relaxed_.contains(operands[2]);
        // behind these operands are numbers that are no ids
        case spv::OpCompositeExtract:
            return isLow(2, 1);
        case spv::OpVectorShuffle:
        case spv::OpCompositeInsert:
            return isLow(2, 2);
        case spv::OpExtInst:
            return isLow(4, operands.size());
        default:
            break;
        }
        const bool isSampled = opcode >= spv::OpImageSampleImplicitLod && opcode <= spv::OpImageDrefGather;
        return !isSampled && isLow(2, operands.size());
    }

    bool isFull(Id value) const {
        const auto type = types_.find(value);
        return type != types_.end() && floats_.contains(type->second) && !relaxed_.contains(value);
    }

    std::set<Id> relaxed_;
    std::set<std::pair<Id, std::uint32_t>> relaxedMembers_;
    std::set<Id> floats_; ///< types
    std::map<Id, Id> elements_;
    std::map<Id, Id> pointees_;
    std::map<Id, std::vector<Id>> members_;
    std::map<Id, std::uint32_t> constants_;
    std::map<Id, Id> types_; ///< of all values but constants, which have any precision
    std::set<Id> tooLow_;
};

} // namespace

void restorePrecision(SpirvModule& module) {
    PrecisionReader reader;
    for (const SpirvInstruction& instruction : module.instructions) {
        reader.read(instruction);
    }
    std::erase_if(module.instructions, [&](const SpirvInstruction& instruction) {
        return instruction.opcode == spv::OpDecorate &&
               instruction.operands[1] == spv::DecorationRelaxedPrecision &&
               reader.tooLow().contains(instruction.operands[0]);
    });
}

} // namespace patina::detail
