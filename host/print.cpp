#include "host/print.h"

#include "host/framework.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace patina {

using namespace detail;

namespace {

/// What tells the two programs apart when they are printed.
struct StageTable {
    const char* title;
    const ShaderStage StagedShader::*stage;
    std::vector<PlacedParameter> RegisterAssignment::*uniforms;
    std::int32_t interpolantRegister;
};

constexpr StageTable vertexStage = {"Vertex", &StagedShader::vertex, &RegisterAssignment::vertexUniforms,
                                    registers::vertexInterpolant};
constexpr StageTable fragmentStage = {"Fragment", &StagedShader::fragment,
                                      &RegisterAssignment::fragmentUniforms, registers::fragmentInterpolant};

/// Appends one program to one text.
class ProgramPrinter {
public:
    ProgramPrinter(const AssembledShader& shader, const StageTable& table, CodeMap* map)
        : shader_(shader), table_(table), stage_(shader.stages.*table.stage), map_(map) {
        constexpr std::size_t commonCallLength = 96;
        text_.reserve(stage_.functions.size() * commonCallLength);
    }

    void printHeader() { text_.append("// ", table_.title, " program. Written by patina.\n"); }

    void printFramework(std::string_view text) {
        if (shader_.options.framework) {
            text_.append("\n", text);
        }
    }

    void printUniforms() {
        const char* separator = "\n";
        for (const PlacedParameter& uniform : shader_.registers.*table_.uniforms) {
            text_.append(separator);
            const std::size_t begin = text_.size();
            text_.append("uniform ", placedDeclaration(uniform), ";\n");
            mapCode(begin, uniform.node, "its uniform", shader_.flow.nodes[uniform.node].generated->name);
            separator = "";
        }
    }

    /// Registers that are read like uniforms: constants and samplers.
    void printUniformRegisters() {
        std::set<std::string_view> printed;
        for (const std::size_t index : stage_.registerInputs) {
            if (isUniformRegister(index) && printed.insert(registerName(index)).second) {
                text_.append(printed.size() == 1 ? "\n" : "", "uniform ", registerParameter(index), ";\n");
            }
        }
    }

    /// The parameters of `main` for registers that nodes name themselves.
    std::vector<std::string> registerParameters() const {
        std::vector<std::string> parameters;
        std::set<std::string_view> declared;
        for (const std::size_t index : stage_.registerInputs) {
            if (!isUniformRegister(index) && declared.insert(registerName(index)).second) {
                parameters.push_back(registerParameter(index));
            }
        }
        for (const std::size_t index : stage_.registerOutputs) {
            parameters.push_back("out " + registerParameter(index));
        }
        return parameters;
    }

    void writeRegisters() {
        for (const std::size_t index : stage_.registerOutputs) {
            statement(registerName(index), " = ", valueName(shader_.flow.nodes[index].inputs.front()));
        }
    }

    void printFunctions() {
        for (const Users& users : usersByFunction()) {
            printUsers(users);
            const std::size_t index = users.first.front();
            const std::size_t begin = text_.size();
            printFunction(shader_.names.functions[index], *shader_.flow.nodes[index].generated);
            mapCode(begin, index, "its function", shader_.names.functions[index]);
        }
    }

    /// `void main( ... ) {`, given the parameters.
    void beginMain(const std::vector<std::string>& parameters) {
        text_.append("\nvoid main(");
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            text_.append(i == 0 ? "\n\t" : ",\n\t", parameters[i]);
        }
        text_.append(" )\n{\n");
    }

    void printCalls() {
        for (const std::size_t index : stage_.functions) {
            const std::size_t begin = text_.size();
            printCall(index);
            mapCode(begin, index, "the call of its function", shader_.names.functions[index]);
        }
    }

    template <typename... Pieces>
    void statement(const Pieces&... pieces) {
        text_.append("\t", pieces..., ";\n");
    }

    std::string finish() {
        text_.append("}\n");
        return text_.take();
    }

    /// `type name : SEMANTIC` of an interpolant register.
    std::string interpolantParameter(std::size_t index) const {
        const InterpolantRegister& entry = shader_.stages.registers[index];
        const ShaderType type = {entry.componentType, entry.componentCount, 1, 1};
        return joinText({declaration(type, shader_.names.interpolants[index]), " : ",
                         registerText({table_.interpolantRegister, entry.number})});
    }

    /// The part of an interpolant register that carries a value.
    std::string interpolantPlace(const Interpolant& interpolant) const {
        const std::string_view name = shader_.names.interpolants[interpolant.registerIndex];
        if (shader_.stages.registers[interpolant.registerIndex].componentCount == 1) {
            return std::string(name);
        }
        constexpr std::string_view components = "xyzw";
        const auto first = static_cast<std::size_t>(interpolant.firstComponent);
        const auto count = static_cast<std::size_t>(shader_.flow.port(interpolant.value).type.columns);
        return joinText({name, ".", components.substr(first, count)});
    }

    std::string_view valueName(const ValueSource& source) const { return shader_.names.value(source); }

    /// A colour of one component is grey, and one of four has its own alpha.
    std::string colourAndAlpha() const {
        constexpr std::array<std::string_view, 4> betweenByWidth = {".xxx, ", ", 0.0, ", ", ", ""};
        const Dataflow& flow = shader_.flow;
        const auto width = static_cast<std::size_t>(flow.port(flow.colour).type.columns);
        const std::string_view alpha = flow.hasAlpha ? valueName(flow.alpha) : "1.0";
        return joinText({"float4( ", valueName(flow.colour), betweenByWidth.at(width - 1),
                         width == betweenByWidth.size() ? "" : alpha, " )"});
    }

    /// `type name : SEMANTIC` of a uniform or varying.
    std::string placedDeclaration(const PlacedParameter& parameter) const {
        const GeneratorNode& generated = *shader_.flow.nodes[parameter.node].generated;
        return joinText({declaration(generated.type, generated.name), " : ", registerText(parameter.place)});
    }

private:
    /// Notes whose the text from `begin` is.
    void mapCode(std::size_t begin, std::size_t node, std::string_view noun, std::string_view name) {
        if (map_ == nullptr) {
            return;
        }
        const auto lineEnds = [&](std::size_t from, std::size_t to) {
            const std::string_view part = text_.view().substr(from, to - from);
            return static_cast<int>(std::count(part.begin(), part.end(), '\n'));
        };
        const int firstLine = countedLines_ + lineEnds(countedSize_, begin) + 1;
        countedLines_ = firstLine + lineEnds(begin, text_.size()) - 1;
        countedSize_ = text_.size();
        map_->push_back({node, firstLine, countedLines_, joinText({noun, " \"", name, "\""})});
    }

    bool isUniformRegister(std::size_t index) const {
        const std::int32_t entry = shader_.flow.nodes[index].generated->registerReference.index;
        return entry == registers::vertexConstant || entry == registers::vertexSampler ||
               entry == registers::fragmentSampler;
    }

    std::string_view registerName(std::size_t index) const { return shader_.names.values(index).front(); }

    std::string registerParameter(std::size_t index) const {
        const GeneratorNode& node = *shader_.flow.nodes[index].generated;
        return joinText(
            {declaration(node.type, registerName(index)), " : ", registerText(node.registerReference)});
    }

    /// Who calls a function: how many nodes, and the first of them.
    struct Users {
        std::size_t count = 0;
        std::vector<std::size_t> first;
    };

    static constexpr std::size_t namedUsers = 4;

    bool isCalled(std::size_t index) const {
        return shader_.flow.nodes[index].generated->kind == NodeKind::Function;
    }

    /// In the order in which the functions are called first.
    std::vector<Users> usersByFunction() const {
        std::vector<Users> allUsers;
        std::vector<std::size_t> placeOf(shader_.flow.nodes.size()); // behind that of the users
        for (const std::size_t index : stage_.functions) {
            if (!isCalled(index)) {
                continue;
            }
            std::size_t& place = placeOf[shader_.flow.functions[index]];
            if (place == 0) {
                allUsers.emplace_back();
                place = allUsers.size();
            }
            Users& users = allUsers[place - 1];
            if (users.count++ < namedUsers) {
                users.first.push_back(index);
            }
        }
        return allUsers;
    }

    /// A comment that names the first nodes whose code this is.
    void printUsers(const Users& users) {
        text_.append("\n// ");
        const char* separator = "";
        for (const std::size_t index : users.first) {
            text_.append(separator, oneLine(ownerTitle(shader_.material, shader_.flow.nodes[index])));
            separator = ", ";
        }
        if (users.count > users.first.size()) {
            text_.append(" and ", std::to_string(users.count - users.first.size()), " more");
        }
        text_.append("\n");
    }

    void printFunction(std::string_view name, const GeneratorNode& function) {
        text_.append("void ", name, "(");
        std::string_view separator = " ";
        for (const GeneratorPort& input : function.inputs) {
            appendDeclaration(text_, input.type, input.name, separator);
            separator = ", ";
        }
        for (const GeneratorPort& output : function.outputs) {
            text_.append(separator);
            appendDeclaration(text_, output.type, output.name, "out ");
            separator = ", ";
        }
        text_.append(" )\n{\n", function.code, "}\n");
    }

    void printCall(std::size_t index) {
        const DataflowNode& node = shader_.flow.nodes[index];
        if (shader_.options.annotate) {
            printTypes(node);
        }
        const GeneratorNode& generated = *node.generated;
        const std::span<const std::string_view> values = shader_.names.values(index);
        if (generated.kind == NodeKind::InterpolantParameter) {
            appendDeclaration(text_, generated.type, values.front(), "\t", " = ");
            text_.append(valueName(node.inputs.front()), ";\n");
            return;
        }
        for (std::size_t port = 0; port < values.size(); ++port) {
            appendDeclaration(text_, generated.outputs[port].type, values[port], "\t", ";\n");
        }
        text_.append("\t", shader_.names.functions[index], "(");
        std::string_view separator = " ";
        for (const ValueSource& input : node.inputs) {
            text_.append(separator, valueName(input));
            separator = ", ";
        }
        for (const std::string_view output : values) {
            text_.append(separator, output);
            separator = ", ";
        }
        text_.append(" );\n");
    }

    /// A comment with the node and the types of its ports.
    void printTypes(const DataflowNode& node) {
        text_.append("\t// ", oneLine(ownerTitle(shader_.material, node)), ": ");
        printPorts(node.generated->inputs);
        text_.append(node.generated->inputs.empty() ? "-> " : " -> ");
        printPorts(node.generated->outputs);
        text_.append("\n");
    }

    void printPorts(const std::vector<GeneratorPort>& ports) {
        for (std::size_t i = 0; i < ports.size(); ++i) {
            text_.append(i == 0 ? "" : ", ", declaration(ports[i].type, ports[i].name));
        }
    }

    const AssembledShader& shader_;
    const StageTable& table_;
    const ShaderStage& stage_;
    TextBuilder text_;
    CodeMap* map_;
    std::size_t countedSize_ = 0; ///< of the text whose lines are counted
    int countedLines_ = 0;
};

void appendAll(std::vector<std::string>& list, const std::vector<std::string>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

} // namespace

std::string printVertexProgram(const AssembledShader& shader, CodeMap* map) {
    ProgramPrinter printer(shader, vertexStage, map);
    printer.printHeader();
    printer.printFramework(frameworkText() + vertexFrameworkText());
    printer.printUniforms();
    printer.printUniformRegisters();
    printer.printFunctions();

    const ShaderType positionType = {ComponentType::Float, 4, 1, 1};
    std::vector<std::string> parameters = {joinText(
        {declaration(positionType, shader.names.position), " : ", registerText(shader.registers.position)})};
    for (const PlacedParameter& attribute : shader.registers.attributes) {
        parameters.push_back(printer.placedDeclaration(attribute));
    }
    parameters.push_back(joinText({"out ", declaration(positionType, shader.names.clipPosition), " : ",
                                   registerText({registers::vertexPosition, 0})}));
    for (std::size_t i = 0; i < shader.stages.registers.size(); ++i) {
        parameters.push_back("out " + printer.interpolantParameter(i));
    }
    appendAll(parameters, printer.registerParameters());
    printer.beginMain(parameters);
    printer.statement(shader.names.clipPosition, " = QelTransformPosition( ", shader.names.position, " )");
    printer.printCalls();
    for (const Interpolant& interpolant : shader.stages.interpolants) {
        printer.statement(printer.interpolantPlace(interpolant), " = ", printer.valueName(interpolant.value));
    }
    printer.writeRegisters();
    return printer.finish();
}

std::string printFragmentProgram(const AssembledShader& shader, CodeMap* map) {
    ProgramPrinter printer(shader, fragmentStage, map);
    printer.printHeader();
    printer.printFramework(frameworkText() + (shader.flow.lit ? litFrameworkText() : ""));
    printer.printUniforms();
    printer.printUniformRegisters();
    printer.printFunctions();

    const ShaderType colourType = {ComponentType::Float, 4, 1, 1};
    std::vector<std::string> parameters;
    for (std::size_t i = 0; i < shader.stages.registers.size(); ++i) {
        parameters.push_back(printer.interpolantParameter(i));
    }
    parameters.push_back(joinText({"out ", declaration(colourType, shader.names.colour), " : ",
                                   registerText({registers::fragmentColour, 0})}));
    appendAll(parameters, printer.registerParameters());
    printer.beginMain(parameters);
    for (const Interpolant& interpolant : shader.stages.interpolants) {
        const ShaderType& type = shader.flow.port(interpolant.value).type;
        printer.statement(declaration(type, printer.valueName(interpolant.value)), " = ",
                          printer.interpolantPlace(interpolant));
    }
    printer.printCalls();
    printer.statement(shader.names.colour, " = ", printer.colourAndAlpha());
    printer.writeRegisters();
    return printer.finish();
}

} // namespace patina
