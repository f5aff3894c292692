#include "time_node.h"

#include "node_support.h"

namespace example {

using namespace patina;

TimeNode::TimeNode() : MaterialNode(staticTypeName()) {
    setName("Time");
    setBodyColour(1.0F, 0.9F, 0.7F);

    speed_ = addProperty("Speed", "Speed: how fast the time passes; 1 counts seconds, negative runs back.");
    speed_->setFloat(1.0F);

    addFloatPort(outputs, "out_time", "time", 1);
}

void TimeNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    builder.addInput(float1, "in_time");
    builder.addOutputPort(outputPort("out_time"));
    builder.declareConstant(float1, "speed", speed_->getFloat());
    builder.appendCode("\tout_time = in_time * speed;\n");
    const auto function = builder.makeNode(ExecutionLevel::Automatic, "scaledTime");
    emitFunction(generator, *this, function);

    const auto time = makeUniformParameter("time", float1);
    generator.addNode(time);
    generator.connect(time, "read", function, "in_time");
}

} // namespace example
