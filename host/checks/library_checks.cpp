#include "host/checks/checks.h"

#include "host/xpm.h"

#include <algorithm>
#include <set>

namespace patina::detail {

namespace {

constexpr std::size_t iconSize = 32;

/// What no plug-in offers.
constexpr const char* unknownType = "no such node type";

/// Without control characters, and something to see in it.
bool isPrintable(const std::string& text) {
    const auto isControl = [](char letter) {
        const auto code = static_cast<unsigned char>(letter);
        return code < 0x20 || code == 0x7F;
    };
    return std::none_of(text.begin(), text.end(), isControl) &&
           text.find_first_not_of(' ') != std::string::npos;
}

void requireRefused(CheckContext& context, const std::string& typeName) {
    std::shared_ptr<MaterialNode> node;
    if (!isRefused([&] { node = context.plugin().factory().createNode(typeName); })) {
        context.report({"createNode gives ", node ? "a node" : "nothing", " for the unknown type ",
                        inQuotes(typeName), "; throw ShaderError"});
    }
}

bool isOffered(const NodeLibrary& library, const std::string& typeName) {
    return std::any_of(library.begin(), library.end(),
                       [&](const NodeDescription& type) { return type.typeName == typeName; });
}

void checkNewNode(CheckContext& context, const NodeDescription& type) {
    const std::shared_ptr<MaterialNode> node = context.plugin().factory().createNode(type.typeName);
    if (!node) {
        context.report({"createNode gives nothing"});
        return;
    }
    context.require(node->typeName() == type.typeName,
                    {"its nodes call themselves ", inQuotes(node->typeName())});
    context.require(node.use_count() == 1, {"a new node belongs to somebody else too"});
    context.require(context.plugin().factory().createNode(type.typeName) != node,
                    {"createNode gives the same node twice"});
}

} // namespace

void checkLibrary(CheckContext& context) {
    const NodeLibrary& library = context.plugin().nodeLibrary();
    context.require(!library.empty(), {"it offers no node type"});
    std::set<std::string> names;
    for (const NodeDescription& type : library) {
        context.examine(type.typeName, {}, [&] {
            context.require(isPrintable(type.typeName),
                            {"the type name ", inQuotes(type.typeName), " is empty or not printable"});
            context.require(names.insert(type.typeName).second, {"the type is listed twice"});
            context.require(isPrintable(type.displayName), {"the display name is empty or not printable"});
            context.require(isPrintable(type.category), {"the category is empty or not printable"});
        });
    }
}

void checkCreation(CheckContext& context) {
    for (const NodeDescription& type : context.plugin().nodeLibrary()) {
        context.examine(type.typeName, {}, [&] { checkNewNode(context, type); });
        const std::string longer = type.typeName + " ";
        if (!isOffered(context.plugin().nodeLibrary(), longer)) {
            context.examine(type.typeName, {}, [&] { requireRefused(context, longer); });
        }
    }
    for (const char* typeName : {unknownType, ""}) {
        context.examine({}, {}, [&] { requireRefused(context, typeName); });
    }
}

void checkIcons(CheckContext& context) {
    for (const NodeDescription& type : context.plugin().nodeLibrary()) {
        context.examine(type.typeName, {}, [&] {
            if (type.icon == nullptr) {
                context.require(!type.creatable, {"the type can be created and has no icon"});
                return;
            }
            for (const std::string& fault : xpmFaults(type.icon, iconSize)) {
                context.report({"the icon is wrong: ", fault});
            }
        });
    }
}

} // namespace patina::detail
