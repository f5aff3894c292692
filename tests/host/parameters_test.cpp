// What generator nodes of every kind of parameter become, from the nodes' code to the printed programs.

#include "tests/host/code_sample.h"

#include "nodemodel/shader_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::CodeNode;
using testing::emitColour;
using testing::emitFunction;
using testing::expectError;
using testing::float1;
using testing::float2;
using testing::float3;
using testing::float4;
using testing::Handle;
using testing::hostErrorOf;
using testing::interfaceOf;
using testing::noError;
using testing::reader;
using testing::registerOf;
using testing::Sample;
using testing::submit;
using testing::writer;

using Texts = std::vector<std::string>;

const auto lamp = [] { return interfaceOf("lamp", float3); };

/// A function from "value" to "result", which nothing feeds yet.
Handle emitStep(GraphGenerator& generator, const std::string& name) {
    FunctionBuilder builder;
    builder.addInput(float3, "value");
    builder.addOutput(float3, "result");
    builder.appendCode("\tresult = value;\n");
    return submit(generator, builder.makeNode(ExecutionLevel::Automatic, name));
}

/// What stands in a program from `main` on.
std::string mainOf(const OutputFile& program) {
    return program.content.substr(program.content.find("void main("));
}

TEST(Parameters, AreOfTypesThatThereAre) {
    for (const std::int32_t code : {-1, 12}) {
        const ShaderType nameless = {static_cast<ComponentType>(code), 1, 1, 1};
        const auto uniform = [=] { return makeUniformParameter("Odd", nameless); };
        const std::string expected = "sample.xml:10: error: node \"a\" (\"Code\"): a value of its code has a "
                                     "component type that there is "
                                     "none of; report this to the author of its plug-in";
        EXPECT_EQ(Sample({reader(uniform)}).error(), expected) << code;
        EXPECT_EQ(Sample({reader(uniform)}).errors(), Texts{expected}) << code;
    }
}

TEST(Parameters, OfTypesThatThereAreNotExcuseWhatTheCodeLacks) {
    const auto brokenBeside = [](const CodeNode::Code& code) {
        return [=](GraphGenerator& generator) {
            submit(generator, makeUniformParameter("Odd", {static_cast<ComponentType>(12), 1, 1, 1}));
            return code(generator);
        };
    };
    const auto unfed = [](GraphGenerator& generator) { return emitStep(generator, "f"); };
    for (const CodeNode::Code& code : {CodeNode::Code(unfed), reader(lamp)}) {
        EXPECT_EQ(Sample({code}).errors().size(), 1U);
        EXPECT_EQ(
            Sample({brokenBeside(code)}).errors(),
            Texts{
                "sample.xml:10: error: node \"a\" (\"Code\"): a value of its code has a component type that "
                "there is none of; report this to the author of its plug-in"});
    }
}

TEST(Parameters, AreOfKindsThatThereAre) {
    for (const std::int32_t code : {-1, 6}) {
        const auto odd = [=](GraphGenerator& generator) {
            const Handle node = emitColour(generator);
            node->kind = static_cast<NodeKind>(code);
            return node;
        };
        const std::string expected = "sample.xml:10: error: node \"a\" (\"Code\"): a node of its code is of "
                                     "a kind that there is none of; "
                                     "report this to the author of its plug-in";
        EXPECT_EQ(Sample({odd}).error(), expected) << code;
        EXPECT_EQ(Sample({odd}).errors(), Texts{expected}) << code;
    }
}

TEST(InterfaceParameters, PassWhatIsWrittenToThem) {
    ExportedMaterial shader = Sample({writer(lamp, float3), reader(lamp)}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0 )
{
	float3 a_result;
	source( a_result );
	float3 b_result;
	f( a_result, b_result );
	colour = float4( b_result, 1.0 );
}
)");
    // the reader may come first
    shader = Sample({reader(lamp), writer(lamp, float3), emitColour}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0 )
{
	float3 c_result;
	f( c_result );
	colour = float4( c_result, 1.0 );
}
)");
}

TEST(InterfaceParameters, ConvertWhatIsWrittenToThem) {
    const ExportedMaterial shader = Sample({writer(lamp, float1), reader(lamp)}).shader();
    EXPECT_NE(shader.fragmentProgram.content.find("\tfloat3 a_out_value;\n"
                                                  "\tpromoteAndSplat( a_result, a_out_value );\n"
                                                  "\tfloat3 b_result;\n"
                                                  "\tf( a_out_value, b_result );\n"),
              std::string::npos)
        << shader.fragmentProgram.content;
}

TEST(InterfaceParameters, NeedOneWriter) {
    const std::string expected =
        "sample.xml:10: error: node \"a\" (\"Code\"): this reads interface parameter \"lamp\" "
        "(float3,flags=0), and no node writes it; add one that does";
    EXPECT_EQ(Sample({reader(lamp)}).error(), expected);
    EXPECT_EQ(Sample({reader(lamp)}).errors(), Texts{expected});
    // whose code was to write it, perhaps
    const auto broken = [](GraphGenerator&) -> Handle { throw ShaderError("out of order"); };
    EXPECT_EQ(Sample({broken, reader(lamp)}).errors(),
              Texts{"sample.xml:10: error: node \"a\" (\"Code\"): out of order"});
    // and whose value is converted
    const auto widened = [](GraphGenerator& generator) {
        const Handle narrow = submit(generator, interfaceOf("lamp", float1));
        const Handle step = emitStep(generator, "f");
        generator.graph->connect(narrow, "read", step, "value"); // the graph itself takes every edge
        return step;
    };
    EXPECT_EQ(Sample({widened}).errors(),
              Texts{"sample.xml:10: error: node \"a\" (\"Code\"): this reads interface parameter \"lamp\" "
                    "(float,flags=0), and no node writes it; add one that does"});
    expectError(
        Sample({writer(lamp, float3), writer(lamp, float3), reader(lamp)}).error(), "sample.xml:11",
        {"node \"b\" (\"Code\")", "interface parameter \"lamp\" (float3,flags=0)", "node \"a\" (\"Code\")"});
}

TEST(InterfaceParameters, MayNotFeedThemselves) {
    const auto back = [](GraphGenerator& generator) {
        const Handle lampNode = submit(generator, interfaceOf("lamp", float3));
        const Handle mirror = submit(generator, interfaceOf("mirror", float3));
        generator.connect(lampNode, "read", mirror, "write");
        generator.connect(mirror, "read", lampNode, "write");
        return emitFunction(generator, {lampNode}, float3);
    };
    expectError(Sample({back}).error(), "sample.xml:10", {"node \"a\" (\"Code\")", "interface parameter"});
}

TEST(InterfaceParameters, NameAllThatFeedThemselves) {
    const auto passed = [](const char* from, const char* to) {
        return [=](GraphGenerator& generator) {
            const Handle other = submit(generator, makeUniformParameter("other", float3));
            const Handle value =
                emitFunction(generator, {other, submit(generator, interfaceOf(from, float3))}, float3);
            generator.connect(value, "result", submit(generator, interfaceOf(to, float3)), "write");
            return value;
        };
    };
    EXPECT_EQ(
        Sample({passed("lamp", "mirror"), passed("mirror", "lamp")}).error(),
        "sample.xml:10: error: node \"a\" (\"Code\"): this needs its own value, through node \"b\" "
        "(\"Code\") and interface parameter \"lamp\" (float3,flags=0) and interface parameter \"mirror\" "
        "(float3,flags=0); take one of them out of the cycle");
    EXPECT_EQ(Sample({passed("lamp", "lamp")}).error(),
              "sample.xml:10: error: node \"a\" (\"Code\"): the code of this node depends on itself through "
              "interface parameter \"lamp\" (float3,flags=0); report this to the author of its plug-in");
}

/// Gives what it was made with for "lamp", and nothing else.
class LampProvider : public InterfaceProvider {
public:
    explicit LampProvider(std::function<Handle(Graph&)> make) : make_(std::move(make)) {}
    Handle provideInterfaceNode(const std::string& name, std::int32_t flags, Graph& graph) override {
        return name == "lamp" && flags == 0 ? make_(graph) : nullptr;
    }

private:
    std::function<Handle(Graph&)> make_;
};

/// Reads the lamp, and brings a provider along for it.
CodeNode::Code readerWith(std::function<Handle(Graph&)> make) {
    return [make = std::move(make)](GraphGenerator& generator) {
        generator.graph->interfaceProviders.push_back(std::make_shared<LampProvider>(make));
        return emitFunction(generator, {submit(generator, lamp())}, float3);
    };
}

TEST(InterfaceParameters, ThatNobodyWritesAreAskedOfTheProviders) {
    const ExportedMaterial shader =
        Sample({readerWith([](Graph&) { return makeUniformParameter("lampColour", float1); })}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0 )
{
	float3 lampColour_float3;
	promoteAndSplat( lampColour, lampColour_float3 );
	float3 a_result;
	f( lampColour_float3, a_result );
	colour = float4( a_result, 1.0 );
}
)");
    EXPECT_NE(shader.fragmentProgram.content.find("\nuniform float lampColour : register( c0 );\n"),
              std::string::npos)
        << shader.fragmentProgram.content;
}

TEST(InterfaceParameters, ThatANodeWritesAreNotAskedFor) {
    const auto provided = readerWith([](Graph&) -> Handle { throw ShaderError("asked in vain"); });
    EXPECT_EQ(Sample({writer(lamp, float3), provided}).error(), noError);
    EXPECT_EQ(Sample({provided}).error(), "sample.xml:10: error: node \"a\" (\"Code\"): asked in vain");
}

TEST(InterfaceParameters, AreReadFromOneAnother) {
    // what the provider gives for the lamp reads what the framework gives
    const auto provide = [](Graph& graph) {
        const Handle position = interfaceOf("objectPosition", float3);
        graph.insertNode(position);
        FunctionBuilder builder;
        builder.addInput(float3, "value");
        builder.addOutput(float3, "read");
        builder.appendCode("\tread = 2.0*value;\n");
        const Handle function = builder.makeNode(ExecutionLevel::Vertex, "twice");
        graph.insertNode(function);
        graph.connect(position, "read", function, "value");
        return function;
    };
    EXPECT_EQ(mainOf(Sample({readerWith(provide)}).shader().vertexProgram), R"(void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	float3 a_out_position;
	objectPositionCode( position, a_out_position );
	float3 a_read;
	twice( a_out_position, a_read );
	interpolant0.xyz = a_read;
}
)");
}

TEST(InterfaceParameters, NeedAValueOfTheirProvider) {
    EXPECT_EQ(
        Sample({readerWith([](Graph&) { return registerOf(5, 0, float1); })}).error(),
        "sample.xml:10: error: node \"a\" (\"Code\"): this reads interface parameter \"lamp\" "
        "(float3,flags=0), for which a provider gives Cg register parameter PSIZE (float), which has no "
        "value; report this to the author of its plug-in");
    expectError(Sample({readerWith([](Graph&) { return makeUniformParameter("pair", float2); })}).error(),
                "sample.xml:10",
                {"node \"a\" (\"Code\")", "uniform parameter \"pair\" (float2)", "\"lamp\""});
    // a second parameter of the name, which nobody writes either
    expectError(Sample({readerWith([](Graph&) { return lamp(); })}).error(), "sample.xml:10",
                {"node \"a\" (\"Code\")", "interface parameter \"lamp\"", "no node writes"});
}

TEST(FrameworkValues, AreThereInAnyOrderOfTheDocument) {
    const auto plain = reader([] { return interfaceOf("objectPosition", float3); });
    const auto asking = [](GraphGenerator& generator) {
        generator.graph->findInterfaceNode("objectPosition", 0, float3);
        return emitFunction(generator, {submit(generator, interfaceOf("objectPosition", float3))}, float3);
    };
    const std::string expected = R"(void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	float3 a_out_position;
	objectPositionCode( position, a_out_position );
	interpolant0.xyz = a_out_position;
}
)";
    EXPECT_EQ(mainOf(Sample({plain}).shader().vertexProgram), expected);
    EXPECT_EQ(mainOf(Sample({asking, plain}).shader().vertexProgram), expected);
    EXPECT_EQ(mainOf(Sample({plain, asking}).shader().vertexProgram), expected);
}

TEST(FrameworkValues, GiveTheObjectPositionOnce) {
    const auto read = [](GraphGenerator& generator) {
        generator.graph->findInterfaceNode("objectPosition", 0, float3);
        return emitFunction(generator, {submit(generator, interfaceOf("objectPosition", float3))}, float3);
    };
    const ExportedMaterial shader = Sample({read, read}).shader();
    EXPECT_EQ(shader.vertexProgram.content, R"(// Vertex program. Written by patina.

// node "a" ("Code")
void objectPositionCode( float4 in_position, out float3 out_position )
{
	out_position = in_position.xyz;
}

void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	float3 a_out_position;
	objectPositionCode( position, a_out_position );
	interpolant0.xyz = a_out_position;
}
)");
}

TEST(FrameworkValues, AreNothingElse) {
    GraphGenerator generator;
    generator.graph->interfaceProviders.push_back(makeFrameworkValues());
    EXPECT_THROW(generator.graph->findInterfaceNode("objectPosition", 1), ShaderError);
    EXPECT_THROW(generator.graph->findInterfaceNode("lamp", 0), ShaderError);
}

TEST(InterpolantParameters, AreComputedPerVertex) {
    const auto interpolated = [](GraphGenerator& generator) {
        const Handle uv = submit(generator, makeVaryingParameter("map1", float2));
        const Handle value = emitFunction(generator, {uv}, float3, ExecutionLevel::Automatic, "source");
        const Handle crossing =
            submit(generator, makeParameterNode(NodeKind::InterpolantParameter, {}, float3));
        generator.connect(value, "result", crossing, "write");
        return emitFunction(generator, {crossing}, float3);
    };
    const ExportedMaterial shader = Sample({interpolated}).shader();
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 position : ATTR0,
	float2 map1 : ATTR1,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	float3 a_result;
	source( map1, a_result );
	float3 a_read = a_result;
	interpolant0.xyz = a_read;
}
)");
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	float3 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	float3 a_read = interpolant0.xyz;
	float3 a_result_2;
	f( a_read, a_result_2 );
	colour = float4( a_result_2, 1.0 );
}
)");
}

TEST(InterpolantParameters, RefuseFragmentValues) {
    const auto wrong = [](GraphGenerator& generator) {
        const Handle value = emitFunction(generator, {}, float3, ExecutionLevel::Fragment, "source");
        const Handle crossing =
            submit(generator, makeParameterNode(NodeKind::InterpolantParameter, {}, float3));
        generator.connect(value, "result", crossing, "write");
        return emitFunction(generator, {crossing}, float3);
    };
    expectError(Sample({wrong}).error(), "sample.xml:10", {"node \"a\" (\"Code\")", "runs per fragment"});
}

TEST(RegisterParameters, AreReadInTheirStage) {
    const auto both = [](GraphGenerator& generator) {
        const Handle window = submit(generator, registerOf(10, 0, float2));
        const Handle attribute = submit(generator, registerOf(1, 5, float2, "extra"));
        const Handle constant = submit(generator, registerOf(2, 12, float1, "strength"));
        const Handle scaled =
            emitFunction(generator, {attribute, constant}, float3, ExecutionLevel::Vertex, "scale");
        const Handle sum = emitFunction(generator, {window}, float3);
        FunctionBuilder builder;
        builder.addInput(float3, "a");
        builder.addInput(float3, "b");
        builder.addOutput(float3, "result");
        builder.appendCode("\tresult = a + b;\n");
        const Handle last = submit(generator, builder.makeNode(ExecutionLevel::Automatic, "add"));
        generator.connect(scaled, "result", last, "a");
        generator.connect(sum, "result", last, "b");
        return last;
    };
    const ExportedMaterial shader = Sample({both}).shader();
    EXPECT_NE(shader.vertexProgram.content.find("\nuniform float strength : register( c12 );\n"),
              std::string::npos)
        << shader.vertexProgram.content;
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0,
	float2 extra : ATTR5 )
{
	clipPosition = QelTransformPosition( position );
	float3 a_result;
	scale( extra, strength, a_result );
	interpolant0.xyz = a_result;
}
)");
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	float3 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0,
	float2 WPOS : WPOS )
{
	float3 a_result = interpolant0.xyz;
	float3 a_result_2;
	f( WPOS, a_result_2 );
	float3 a_result_3;
	add( a_result, a_result_2, a_result_3 );
	colour = float4( a_result_3, 1.0 );
}
)");
}

TEST(RegisterParameters, OfConstantsAndSamplersAreUniforms) {
    const auto readers = [](ExecutionLevel level, const std::vector<Handle>& registers) {
        return Sample({[=](GraphGenerator& generator) {
                   for (const Handle& entry : registers) {
                       generator.addNode(entry);
                   }
                   return emitFunction(generator, registers, float3, level);
               }})
            .shader();
    };
    constexpr ShaderType sampler = {ComponentType::Sampler2D, 1, 1, 1};
    const std::string vertex =
        readers(ExecutionLevel::Vertex, {registerOf(registers::vertexConstant, 12, float1, "strength"),
                                         registerOf(registers::vertexConstant, 12, float1),
                                         registerOf(registers::vertexConstant, 13, float2),
                                         registerOf(registers::vertexSampler, 1, sampler, "heights")})
            .vertexProgram.content;
    EXPECT_NE(vertex.find("\n\nuniform float strength : register( c12 );\n"
                          "uniform float2 register_c13_ : register( c13 );\n"
                          "uniform sampler2D heights : TEXUNIT1;\n\n"),
              std::string::npos)
        << vertex;
    const std::string fragment =
        readers(ExecutionLevel::Fragment, {registerOf(registers::fragmentSampler, 3, sampler, "paint")})
            .fragmentProgram.content;
    EXPECT_NE(fragment.find("\n\nuniform sampler2D paint : TEXUNIT3;\n\n"), std::string::npos) << fragment;
}

TEST(RegisterParameters, AreWrittenWithoutAnyOtherReader) {
    const ExportedMaterial shader =
        Sample({writer([] { return registerOf(17, 0, float1, "depth"); }, float1),
                writer([] { return registerOf(5, 0, float1); }, float1, ExecutionLevel::Vertex), emitColour})
            .shader();
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float PSIZE : PSIZE )
{
	clipPosition = QelTransformPosition( position );
	float b_result;
	source( b_result );
	PSIZE = b_result;
}
)");
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0,
	out float depth : DEPTH )
{
	float a_result;
	source( a_result );
	float3 c_result;
	f( c_result );
	colour = float4( c_result, 1.0 );
	depth = a_result;
}
)");
}

TEST(RegisterParameters, AreWrittenWhateverElseIsNotNeeded) {
    const auto unread = [](GraphGenerator& generator) {
        emitFunction(generator, {}, float2, ExecutionLevel::Automatic, "unread");
        return Handle();
    };
    const ExportedMaterial shader =
        Sample({unread, writer([] { return registerOf(17, 0, float1, "depth"); }, float1), emitColour})
            .shader();
    const std::string main = mainOf(shader.fragmentProgram);
    EXPECT_NE(main.find("\tfloat b_result;\n\tsource( b_result );\n"), std::string::npos) << main;
    EXPECT_NE(main.find("\tdepth = b_result;\n"), std::string::npos) << main;
    EXPECT_EQ(main.find("unread"), std::string::npos) << main;
}

TEST(RegisterParameters, AreSharedByReadersOfOneType) {
    const auto window = [] { return registerOf(10, 0, float2); };
    const ExportedMaterial shader = Sample({[&](GraphGenerator& generator) {
                                        const Handle first = submit(generator, window());
                                        const Handle second = submit(generator, window());
                                        return emitFunction(generator, {first, second}, float3);
                                    }}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0,
	float2 WPOS : WPOS )
{
	float3 a_result;
	f( WPOS, WPOS, a_result );
	colour = float4( a_result, 1.0 );
}
)");
}

TEST(RegisterParameters, LeaveNoRoomForPackedInterpolants) {
    const auto crossing = [](GraphGenerator& generator) {
        const Handle vertex = emitFunction(generator, {}, float4, ExecutionLevel::Vertex, "source");
        FunctionBuilder builder;
        builder.addInput(float4, "value");
        builder.addOutput(float3, "result");
        builder.appendCode("\tresult = value.xyz;\n");
        const Handle last = submit(generator, builder.makeNode(ExecutionLevel::Fragment, "f"));
        generator.connect(vertex, "result", last, "value");
        return last;
    };
    const ExportedMaterial shader =
        Sample({writer([] { return registerOf(9, 0, float2, "mine"); }, float2), crossing}).shader();
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION,
	out float4 interpolant0 : TEXCOORD1,
	out float2 mine : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	float2 a_result;
	source( a_result );
	float4 b_result;
	source_2( b_result );
	interpolant0.xyzw = b_result;
	mine = a_result;
}
)");
}

struct RefusedRow {
    std::int32_t index;
    std::int32_t number;
    std::string description;
    std::string reason;
};

TEST(RegisterParameters, MustBeTheNodesToTake) {
    const RefusedRow rows[] = {
        {0, 0, "Cg register parameter UNKNOWN (float)", "no register"},
        {5, 1, "Cg register parameter PSIZE (float)", "no register"},
        {5, -1, "Cg register parameter PSIZE (float)", "no register"},
        {9, 10, "Cg register parameter TEXCOORD10 (float)", "no register"},
        {4, 0, "Cg register parameter POSITION (float)", "framework"},
        {16, 0, "Cg register parameter COLOR0 (float)", "framework"},
    };
    for (const RefusedRow& row : rows) {
        const auto make = [&] { return registerOf(row.index, row.number, float1); };
        const bool isRead = !make()->outputs.empty();
        const std::string error =
            isRead ? Sample({reader(make)}).error() : Sample({writer(make, float1), emitColour}).error();
        expectError(error, "sample.xml:10", {"node \"a\" (\"Code\")", row.description, row.reason});
    }
    EXPECT_EQ(Sample({writer([] { return registerOf(16, 1, float4); }, float4), emitColour}).error(),
              noError);
}

TEST(RegisterParameters, AreNotClaimedTwice) {
    const auto depth = [] { return registerOf(17, 0, float1); };
    expectError(Sample({writer(depth, float1), writer(depth, float1), emitColour}).error(), "sample.xml:11",
                {"node \"b\" (\"Code\")", "Cg register parameter DEPTH (float)", "node \"a\" (\"Code\")"});
    const auto twoTypes = [](GraphGenerator& generator) {
        const Handle first = submit(generator, registerOf(10, 0, float2));
        const Handle second = submit(generator, registerOf(10, 0, float4));
        return emitFunction(generator, {first, second}, float3);
    };
    expectError(Sample({twoTypes}).error(), "sample.xml:10",
                {"Cg register parameter WPOS (float4)", "node \"a\"", "Cg register parameter WPOS (float2)"});
}

TEST(RegisterParameters, ThatInterpolateNeedAWriter) {
    const auto texcoord = [](std::int32_t number) {
        return reader([=] { return registerOf(registers::fragmentInterpolant, number, float2); });
    };
    const auto written = [](const ShaderType& type) {
        return writer([=] { return registerOf(registers::vertexInterpolant, 3, type, "mine"); }, type);
    };
    EXPECT_EQ(
        Sample({texcoord(3)}).error(),
        "sample.xml:10: error: node \"a\" (\"Code\"): this reads Cg register parameter TEXCOORD3 (float2), "
        "and no node writes \"TEXCOORD3\" per vertex; add one that does, or read an interpolant parameter");
    expectError(Sample({written(float2), texcoord(4)}).error(), "sample.xml:11",
                {"node \"b\" (\"Code\")", "TEXCOORD4"});
    EXPECT_EQ(
        Sample({written(float3), texcoord(3)}).error(),
        "sample.xml:11: error: node \"b\" (\"Code\"): this reads Cg register parameter TEXCOORD3 (float2), "
        "and node \"a\" (\"Code\") writes it as float3; both must have one type");
    const ExportedMaterial shader = Sample({written(float2), texcoord(3)}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	out float4 colour : COLOR0,
	float2 TEXCOORD3 : TEXCOORD3 )
{
	float3 b_result;
	f( TEXCOORD3, b_result );
	colour = float4( b_result, 1.0 );
}
)");
}

TEST(RegisterParameters, CrossOnceForAllReaders) {
    const auto extra = [] { return registerOf(registers::vertexAttribute, 5, float4, "extra"); };
    const ExportedMaterial shader = Sample({[&](GraphGenerator& generator) {
                                        const Handle first = submit(generator, extra());
                                        const Handle second = submit(generator, extra());
                                        return emitFunction(generator, {first, second}, float3);
                                    }}).shader();
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	float4 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	float4 extra = interpolant0.xyzw;
	float3 a_result;
	f( extra, extra, a_result );
	colour = float4( a_result, 1.0 );
}
)");
}

TEST(VaryingParameters, CrossOnceForAllReaders) {
    const ExportedMaterial shader =
        Sample({[](GraphGenerator& generator) {
            const Handle first = submit(generator, makeVaryingParameter("normal", float3));
            const Handle second = submit(generator, makeVaryingParameter("normal", float3));
            return emitFunction(generator, {first, second}, float3);
        }}).shader();
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 position : ATTR0,
	float3 normal : ATTR1,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( position );
	interpolant0.xyz = normal;
}
)");
    EXPECT_EQ(mainOf(shader.fragmentProgram), R"(void main(
	float3 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	float3 normal = interpolant0.xyz;
	float3 a_result;
	f( normal, normal, a_result );
	colour = float4( a_result, 1.0 );
}
)");
}

TEST(VaryingParameters, OfThePositionsRegisterAreThePosition) {
    const auto position = [](const std::string& name) {
        return makeParameterNode(NodeKind::VaryingParameter, name, float4, 0,
                                 {registers::vertexAttribute, 0});
    };
    const ExportedMaterial shader =
        Sample({[&](GraphGenerator& generator) {
            const Handle first = submit(generator, position("objPos"));
            const Handle second = submit(generator, position("place"));
            return emitFunction(generator, {first, second}, float3, ExecutionLevel::Vertex);
        }}).shader();
    EXPECT_EQ(mainOf(shader.vertexProgram), R"(void main(
	float4 objPos : ATTR0,
	out float4 clipPosition : POSITION,
	out float3 interpolant0 : TEXCOORD0 )
{
	clipPosition = QelTransformPosition( objPos );
	float3 a_result;
	f( objPos, objPos, a_result );
	interpolant0.xyz = a_result;
}
)");
}

TEST(RegisterParameters, OfTheFragmentProgramStayThere) {
    expectError(Sample({reader([] { return registerOf(10, 0, float2); }, ExecutionLevel::Vertex)}).error(),
                "sample.xml:10",
                {"node \"a\" (\"Code\")", "Cg register parameter WPOS (float2)", "fragment program",
                 "node \"a\" (\"Code\")"});
}

TEST(InnerEdges, OfTypesThatDoNotConvertAreRefused) {
    const auto wrong = [](GraphGenerator& generator) {
        const Handle pair = submit(generator, makeUniformParameter("pair", float2));
        FunctionBuilder builder;
        builder.addInput(float3, "value");
        builder.addOutput(float3, "result");
        const Handle last = submit(generator, builder.makeNode(ExecutionLevel::Automatic, "last"));
        // the graph itself takes every edge
        generator.graph->connect(pair, "read", last, "value");
        return last;
    };
    const std::string expected =
        "sample.xml:10: error: node \"a\" (\"Code\"), uniform parameter \"pair\" (float2), to \"value\" of "
        "function \"last\" (1/1/*): cannot convert float2 to float3";
    EXPECT_EQ(Sample({wrong}).error(), expected);
    EXPECT_EQ(Sample({wrong}).errors(), Texts{expected}) << "nothing is missing because of it";
}

TEST(Parameters, HaveThePortsOfTheirKind) {
    const std::string expected =
        "sample.xml:10: error: node \"a\" (\"Code\"): a parameter of its code has not "
        "the ports of its kind; report this to the author of its plug-in";
    for (const NodeKind kind : {NodeKind::InterfaceParameter, NodeKind::InterpolantParameter}) {
        for (const auto ports : {&GeneratorNode::inputs, &GeneratorNode::outputs}) {
            const auto lacking = [=](GraphGenerator& generator) {
                const Handle parameter = makeParameterNode(kind, "p", float3);
                ((*parameter).*ports).clear();
                submit(generator, parameter);
                return emitColour(generator);
            };
            EXPECT_EQ(Sample({lacking}).error(), expected);
            EXPECT_EQ(Sample({lacking}).errors(), Texts{expected});
        }
    }
}

TEST(InterfaceParameters, PassTheirValueBesideInputsThatNothingFeeds) {
    const auto unfed = [](GraphGenerator& generator) { return emitStep(generator, "unfed"); };
    Sample sample({writer(lamp, float3), reader(lamp), unfed});
    EXPECT_EQ(sample.errors(),
              Texts{"sample.xml:12: error: node \"c\" (\"Code\"): nothing feeds \"value\" of function "
                    "\"unfed\" (1/1/*); report this to the author of its plug-in"});
}

/// A function of one input, to which the code brings a uniform parameter by edges of those ports.
CodeNode::Code joinedBy(const std::vector<std::pair<std::string, std::string>>& edges) {
    return [=](GraphGenerator& generator) {
        const Handle uniform = submit(generator, makeUniformParameter("u", float3));
        const Handle function = emitStep(generator, "f");
        for (const auto& [from, to] : edges) {
            generator.graph->connect(uniform, from, function, to);
        }
        return function;
    };
}

TEST(InnerEdges, OfPortsThatThereAreNotJoinNothing) {
    const std::string unfed =
        "sample.xml:10: error: node \"a\" (\"Code\"): nothing feeds \"value\" of function "
        "\"f\" (1/1/*); report this to the author of its plug-in";
    EXPECT_EQ(Sample({joinedBy({{"nope", "value"}})}).error(), unfed);
    EXPECT_EQ(Sample({joinedBy({{"read", "nope"}})}).error(), unfed);
    EXPECT_EQ(Sample({joinedBy({{"read", "nope"}, {"nope", "value"}, {"read", "value"}})}).error(), noError);
}

/// A function that the code feeds from a uniform parameter, after an edge to it from another node.
CodeNode::Code joinedAfter(const std::function<Handle()>& makeTail) {
    return [=](GraphGenerator& generator) {
        const Handle uniform = submit(generator, makeUniformParameter("u", float3));
        const Handle function = emitStep(generator, "f");
        const auto edge = std::make_shared<GeneratorEdge>();
        edge->tail = makeTail();
        edge->tailPort = "read";
        edge->head = function;
        edge->headPort = "value";
        generator.graph->edges.push_back(edge); // past what the graph would refuse
        generator.graph->edges.push_back(std::make_shared<GeneratorEdge>());
        generator.graph->edges.back()->tail = uniform;
        generator.graph->connect(uniform, "read", function, "value");
        return function;
    };
}

TEST(InnerEdges, OfNodesOutsideTheGraphJoinNothing) {
    const Handle elsewhere = makeUniformParameter("v", float3);
    EXPECT_EQ(Sample({joinedAfter([=] { return elsewhere; })}).error(), noError);
    EXPECT_EQ(Sample({joinedAfter([] { return makeUniformParameter("v", float3); })}).error(), noError);
}

TEST(InnerEdges, MayNotLeadInACircle) {
    const auto join = [](GraphGenerator& generator, const Handle& left, const Handle& right) {
        generator.connect(left, "result", right, "value");
        generator.connect(right, "result", left, "value");
    };
    const auto ofOneNode = [&](GraphGenerator& generator) {
        const Handle last = emitStep(generator, "last");
        join(generator, emitStep(generator, "first"), last);
        return last;
    };
    EXPECT_EQ(
        Sample({ofOneNode}).error(),
        "sample.xml:10: error: node \"a\" (\"Code\"): the code of this node depends on itself; report this "
        "to the author of its plug-in");
    Handle first;
    const auto emitFirst = [&](GraphGenerator& generator) { return first = emitStep(generator, "first"); };
    const auto joinToFirst = [&](GraphGenerator& generator) {
        const Handle last = emitStep(generator, "last");
        join(generator, first, last);
        return last;
    };
    EXPECT_EQ(Sample({emitFirst, joinToFirst}).error(),
              "sample.xml:10: error: node \"a\" (\"Code\"): this needs its own value, through node \"b\" "
              "(\"Code\"); take one of them out of the cycle");
}

TEST(Outputs, NeedTheCodeThatGivesThem) {
    const std::string expected =
        ": error: node \"a\" (\"Code\"): the code of this node does not provide the port "
        "\"result\"; report this to the author of its plug-in";
    const auto nothing = [](GraphGenerator&) { return Handle(); };
    EXPECT_EQ(Sample({nothing}).error(), "sample.xml" + expected);
    const auto notSubmitted = [](GraphGenerator&) { return makeUniformParameter("u", float3); };
    EXPECT_EQ(Sample({notSubmitted}).error(), "sample.xml" + expected);
    Sample connected({nothing, [](GraphGenerator& generator) { return emitStep(generator, "f"); }});
    connected.connect(0, 1, "value");
    EXPECT_EQ(connected.error(), "sample.xml:20" + expected) << "where only the reader links it";
}

TEST(Outputs, MayComeOfAnyNodeOfTheirCode) {
    const auto tenSteps = [](GraphGenerator& generator) {
        Handle last = submit(generator, makeUniformParameter("u", float3));
        std::string from = "read";
        for (int i = 0; i < 10; ++i) {
            const Handle step = emitStep(generator, "step" + std::to_string(i));
            generator.connect(last, from, step, "value");
            last = step;
            from = "result";
        }
        return last;
    };
    const auto insertedInTheGraph = [](GraphGenerator& generator) {
        FunctionBuilder builder;
        builder.addOutput(float3, "result");
        builder.appendCode("\tresult = float3( 1.0, 0.5, 0.0 );\n");
        const Handle function = builder.makeNode(ExecutionLevel::Automatic, "f");
        generator.graph->insertNode(function);
        return function;
    };
    const auto insertedBehindTen = [=](GraphGenerator& generator) {
        tenSteps(generator);
        return insertedInTheGraph(generator);
    };
    for (const CodeNode::Code& code :
         {CodeNode::Code(tenSteps), CodeNode::Code(insertedInTheGraph), CodeNode::Code(insertedBehindTen)}) {
        EXPECT_EQ(Sample({code}).error(), noError);
    }
    EXPECT_NE(
        mainOf(Sample({tenSteps}).shader().fragmentProgram).find("\tstep9( a_result_9, a_result_10 );\n"),
        std::string::npos);
}

TEST(Outputs, AreNumbersOfOneRow) {
    const struct {
        ShaderType type;
        const char* name;
    } rows[] = {
        {{ComponentType::Sampler2D, 1, 1, 1}, "sampler2D"},
        {{ComponentType::Void, 1, 1, 1}, "void"},
        {{ComponentType::Float, 3, 3, 1}, "float3x3"},
        {{ComponentType::Float, 3, 1, 2}, "float3[2]"},
    };
    for (const auto& row : rows) {
        const auto odd = [&](GraphGenerator& generator) { return emitFunction(generator, {}, row.type); };
        const std::string given = std::string(", and node \"a\" (\"Code\") gives \"result\" as ") + row.name;
        EXPECT_EQ(Sample({odd}).error(),
                  "sample.xml: error: output \"colour\" takes three components or one" + given);
        EXPECT_EQ(Sample({odd}).error(true),
                  "sample.xml: error: output \"colour\" takes one to four components" + given);
    }
    for (const ComponentType component :
         {ComponentType::Float, ComponentType::Half, ComponentType::Fixed, ComponentType::Int}) {
        const auto number = [&](GraphGenerator& generator) {
            return emitFunction(generator, {}, {component, 3, 1, 1});
        };
        EXPECT_EQ(Sample({number}).error(), noError);
    }
}

TEST(Outputs, ThatAreFixedAreLitAsHalf) {
    const auto emitter = [](ComponentType component) {
        return [=](GraphGenerator& generator) { return emitFunction(generator, {}, {component, 3, 1, 1}); };
    };
    for (const auto& [component, expected] : {std::pair{ComponentType::Fixed, "half3 in_emissive"},
                                              {ComponentType::Half, "half3 in_emissive"},
                                              {ComponentType::Int, "float3 in_emissive"}}) {
        Sample sample({emitter(component), emitter(ComponentType::Half)});
        sample.addOutput("emissive", 0);
        const std::string program = sample.shader().fragmentProgram.content;
        EXPECT_NE(program.find(expected), std::string::npos) << program;
    }
}

TEST(InnerEdges, OfAnInputThatIsConnectedAreRefused) {
    Sample sample({emitColour, [](GraphGenerator& generator) {
                       const Handle inner = submit(generator, makeUniformParameter("inner", float3));
                       return emitFunction(generator, {inner}, float3);
                   }});
    sample.connect(0, 1, "value0");
    EXPECT_EQ(sample.error(),
              "sample.xml:20: error: node \"b\" (\"Code\"), input \"value0\": this connection feeds "
              "\"value0\" of function \"f\" (1/1/*), and so does the code of node \"b\" (\"Code\"); only one "
              "of them can");
}

TEST(InnerEdges, MayEndWhereAConnectionEndsThatIsLinkedTwice) {
    std::shared_ptr<NodeConnection> connection;
    Sample sample({emitColour, [&](GraphGenerator& generator) {
                       const Handle function = emitStep(generator, "f");
                       generator.linkInputPort(connection, function, "value");
                       return function;
                   }});
    connection = sample.connect(0, 1, "value");
    EXPECT_EQ(sample.error(), noError) << "it feeds what it fed before";
}

TEST(PrintOptions, AnnotationsNameTheTypes) {
    Material material = testing::built(testing::node("uv", "CoreUv") + testing::node("t", "CoreTexture") +
                                       testing::connection("uv", "read", "t", "in_uv") +
                                       testing::output("colour", "t", "out_colour"));
    ExportOptions options;
    options.print.annotate = true;
    const std::string text = mainOf(testing::exportedFrom(material, options).fragmentProgram);
    EXPECT_EQ(text, R"(void main(
	float2 interpolant0 : TEXCOORD0,
	out float4 colour : COLOR0 )
{
	float2 Uv = interpolant0.xy;
	// node "t" ("Texture"): float2 in_uv, sampler2D in_sampler -> half3 out_colour
	half3 t_out_colour;
	textureCode( Uv, Texture, t_out_colour );
	colour = float4( t_out_colour, 1.0 );
}
)");
}

TEST(PrintOptions, AnnotationsOfFunctionsWithoutInputsNameWhatTheyGive) {
    Material material =
        testing::built(testing::maths("m", "Invert") + testing::output("colour", "m", "out_value"));
    ExportOptions options;
    options.print.annotate = true;
    const std::string text = mainOf(testing::exportedFrom(material, options).fragmentProgram);
    EXPECT_NE(text.find("\t// node \"m\" (\"Maths\"): -> half out_value\n"), std::string::npos) << text;
}

TEST(PrintOptions, TheFrameworkIsLeftOut) {
    Material material =
        testing::built(testing::node("c", "CoreConstant") + testing::output("colour", "c", "read"));
    ExportOptions options;
    options.print.framework = false;
    const ExportedMaterial shader = testing::exportedFrom(material, options);
    EXPECT_EQ(shader.vertexProgram.content, R"(// Vertex program. Written by patina.

void main(
	float4 position : ATTR0,
	out float4 clipPosition : POSITION )
{
	clipPosition = QelTransformPosition( position );
}
)");
    EXPECT_EQ(shader.fragmentProgram.content.find("QelSrgbToLinear"), std::string::npos);
}

} // namespace
} // namespace patina
