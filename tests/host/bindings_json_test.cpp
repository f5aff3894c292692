#include "tests/host/host_checks.h"

#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace patina {
namespace {

using Json = nlohmann::ordered_json;

/// A binding of each class, each with all that the file can say of it.
BindingsFile sample() {
    BindingsFile file;
    file.material = "Rusty \"4\"";
    file.programs = {{"vertex", "Rusty.vert.cg", "12ab", {}, {}, {}},
                     {"fragment", "Rusty.frag.cg", "34cd", {}, {}, {}}};

    const auto tint = createBinding(BindingKind::Float, "Tint", 3);
    tint->group = "Paint";
    tint->basicColour = true;
    tint->parseMin("0");
    tint->parseMax("1, 2, 1234567");
    tint->parseDefault("0.62, -0.11, 0");
    file.bindings.push_back(
        {tint, {{"default", "0.5, 0.5, 0.5"}}, {{"vertex", "c4", "Tint"}, {"fragment", "c0", "Tint"}}});

    const auto paint = toTextureBinding(createBinding(BindingKind::Texture, "Paint", 1));
    paint->srgb = true;
    paint->normalised = false;
    paint->parseDefault("1.5");
    file.bindings.push_back({paint, {}, {}});

    const auto map = createBinding(BindingKind::Uv, "map1", 1);
    map->description = "The \xC3\xA4u\xC3\x9F"
                       "ere\nmap";
    file.bindings.push_back({map, {{"default", "set1"}}, {}});
    return file;
}

constexpr const char* expected = R"({
  "version": 1,
  "material": "Rusty \"4\"",
  "programs": [
    {
      "stage": "vertex",
      "file": "Rusty.vert.cg",
      "sha256": "12ab"
    },
    {
      "stage": "fragment",
      "file": "Rusty.frag.cg",
      "sha256": "34cd"
    }
  ],
  "bindings": [
    {
      "kind": "float",
      "components": 3,
      "group": "Paint",
      "tag": "Tint",
      "min": [
        0.0,
        0.0,
        0.0
      ],
      "max": [
        1.0,
        2.0,
        1234570.0
      ],
      "default": [
        0.62,
        -0.11,
        0.0
      ],
      "basic_colour": true,
      "exported_default": [
        0.5,
        0.5,
        0.5
      ],
      "landings": [
        {
          "stage": "vertex",
          "register": "c4",
          "name": "Tint"
        },
        {
          "stage": "fragment",
          "register": "c0",
          "name": "Tint"
        }
      ]
    },
    {
      "kind": "texture",
      "components": 1,
      "tag": "Paint",
      "default": "1.5",
      "srgb": true,
      "normalised": false,
      "landings": []
    },
    {
      "kind": "uv",
      "components": 1,
      "tag": "map1",
      "desc": "The äußere\nmap",
      "default": "",
      "exported_default": "set1",
      "landings": []
    }
  ]
}
)";

TEST(PrintBindingsJson, SaysWhatTheXmlSays) {
    EXPECT_EQ(printBindingsJson(sample()), expected);
    const testing::CommaLocale comma;
    EXPECT_EQ(printBindingsJson(sample()), expected);
}

TEST(PrintBindingsJson, HasNullForWhatIsNoJsonNumber) {
    BindingsFile file;
    file.bindings.push_back({createBinding(BindingKind::Float, "Far", 3), {}, {}});
    file.bindings[0].binding->parseMax("inf, nan, 1e30");
    const Json maximum = Json::parse(printBindingsJson(file)).at("bindings").at(0).at("max");
    EXPECT_EQ(maximum.dump(), "[null,null,1e+30]");
}

TEST(PrintBindingsJson, SaysWhereTheParametersOfOtherLanguagesAre) {
    BindingsFile file;
    file.programs = {{"fragment",
                      "Rusty.frag.glsl",
                      "12ab",
                      "glsl",
                      "330",
                      {{"Tint",
                        ParameterKind::Uniform,
                        {ComponentType::Half, 3, 1, 1},
                        "_Tint",
                        {{"offset", "64"}, {"place", "6x"}}}}}};
    EXPECT_EQ(
        Json::parse(printBindingsJson(file)).at("programs").dump(),
        "[{\"stage\":\"fragment\",\"target\":\"glsl\",\"version\":\"330\",\"file\":\"Rusty.frag.glsl\","
        "\"sha256\":\"12ab\",\"parameters\":[{\"name\":\"Tint\",\"kind\":\"uniform\",\"type\":\"half3\","
        "\"target_name\":\"_Tint\",\"offset\":64,\"place\":\"6x\"}]}]");
}

TEST(PrintBindingsJson, HasNoNumbersForATextThatIsNone) {
    BindingsFile file;
    file.bindings.push_back({createBinding(BindingKind::Float, "Far", 1), {{"default", "red"}}, {}});
    const Json binding = Json::parse(printBindingsJson(file)).at("bindings").at(0);
    EXPECT_EQ(binding.at("exported_default").dump(), "[]");
}

TEST(PrintBindingsJson, SurvivesTextsThatAreNoUtf8) {
    BindingsFile file;
    file.material = "a\xFF";
    EXPECT_EQ(Json::parse(printBindingsJson(file)).at("material"), "a\xEF\xBF\xBD");
}

TEST(ExportMaterial, MakesJsonOnlyWhenAsked) {
    Material material =
        testing::built(testing::maths("m", "Invert") + testing::output("colour", "m", "out_value"));
    EXPECT_FALSE(testing::exportedFrom(material).bindingsJson);
    ExportOptions options;
    options.json = true;
    const ExportedMaterial exported = testing::exportedFrom(material, options);
    ASSERT_TRUE(exported.bindingsJson);
    EXPECT_EQ(exported.bindingsJson->name, "Sample.bindings.json");
    const Json json = Json::parse(exported.bindingsJson->content);
    EXPECT_EQ(json.at("material"), "Sample");
    EXPECT_EQ(json.at("programs").at(1).at("sha256"), sha256Text(exported.fragmentProgram.content));
}

} // namespace
} // namespace patina
