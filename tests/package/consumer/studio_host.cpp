#include <host/host.h>

#include <iostream>

/// Exports a material of the plug-ins that are named on the command line and prints its fragment program.
int main(int argc, char** argv) {
    patina::PluginSet plugins;
    for (int i = 1; i < argc; ++i) {
        plugins.add(argv[i]);
    }
    const auto document = patina::parseMaterial("<material version=\"1\" name=\"Grey\">"
                                                "<node id=\"grey\" type=\"StudioGrey\"/>"
                                                "<node id=\"half\" type=\"CoreMaths\"/>"
                                                "<connection source=\"grey\" output=\"out_grey\""
                                                " destination=\"half\" input=\"in_value1\"/>"
                                                "<output name=\"colour\" source=\"half\" port=\"out_value\"/>"
                                                "</material>",
                                                "grey.xml");
    patina::Warnings warnings;
    auto material = patina::buildMaterial(document, plugins, warnings);
    std::cout << patina::exportMaterial(material, warnings).fragmentProgram.content;
    return warnings.empty() ? 0 : 1;
}
