#pragma once

#include <nodemodel/nodemodel.h>

#include <memory>

namespace example {

/// "ExampleTime": seconds that pass, at a speed. The engine sets the uniform "time"; there is no binding.
class TimeNode final : public patina::MaterialNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleTime"; }

    TimeNode();

    void generateCode(patina::GraphGenerator& generator) override;

private:
    std::shared_ptr<patina::Property> speed_;
};

} // namespace example
