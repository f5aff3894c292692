#include "nodemodel/xml_attributes.h"

#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>
#include <utility>

namespace patina {

using namespace detail;

namespace {

using testing::shaderErrorOf;

/// A parsed document.
class Document {
public:
    explicit Document(const std::string& text)
        : document_(xmlReadMemory(text.data(), static_cast<int>(text.size()), "test.xml", nullptr, 0)) {}

    xmlNode* root() const { return xmlDocGetRootElement(document_.get()); }
    xmlNode* self() const { return reinterpret_cast<xmlNode*>(document_.get()); }

    /// The root element as XML text.
    std::string text() const {
        const std::unique_ptr<xmlBuffer, Free> buffer(xmlBufferCreate());
        xmlNodeDump(buffer.get(), document_.get(), root(), 0, 0);
        return reinterpret_cast<const char*>(xmlBufferContent(buffer.get()));
    }

private:
    struct Free {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
        void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    };
    std::unique_ptr<xmlDoc, Free> document_;
};

TEST(XmlAttributes, AreWrittenAndRead) {
    const Document document("<binding/>");
    writeAttribute(document.root(), "tag", "Diffuse");
    EXPECT_EQ(document.text(), "<binding tag=\"Diffuse\"/>");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "Diffuse");
}

TEST(XmlAttributes, AreReadInAnyNamespace) {
    const Document document("<binding xmlns:studio=\"urn:studio\" studio:tag=\"Diffuse\"/>");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "Diffuse");
}

TEST(XmlAttributes, AreWrittenIntoTheNamespaceOfTheirPrefix) {
    const Document document("<binding xmlns:studio=\"urn:studio\"/>");
    writeAttribute(document.root(), "studio:tag", "Diffuse");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "Diffuse");
}

xmlFreeFunc libraryFree = nullptr;
int freed = 0;

TEST(XmlAttributes, FreeTheCopyThatTheyReadFrom) {
    const Document document("<binding tag=\"Diffuse\"/>");
    libraryFree = std::exchange(xmlFree, [](void* text) {
        ++freed;
        libraryFree(text);
    });
    const std::string read = readAttribute(document.root(), "tag");
    xmlFree = libraryFree;
    EXPECT_EQ(read, "Diffuse");
    EXPECT_EQ(freed, 1);
}

TEST(XmlAttributes, ASecondWriteReplacesTheFirst) {
    const Document document("<binding tag=\"parsed\" uv=\"uv0\"/>");
    writeAttribute(document.root(), "tag", "first");
    writeAttribute(document.root(), "tag", "second");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "second");
    EXPECT_EQ(document.text(), "<binding tag=\"second\" uv=\"uv0\"/>");
}

TEST(XmlAttributes, NamesAreCaseSensitive) {
    const Document document("<binding tag=\"Diffuse\"/>");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root(), "Tag"); }),
              "failed to find \"Tag\" attribute on \"binding\" element");
}

TEST(XmlAttributes, AMissingOneFails) {
    const Document document("<material><binding tag=\"Diffuse\"/></material>");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root(), "tag"); }),
              "failed to find \"tag\" attribute on \"material\" element");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root()->children, "gui"); }),
              "failed to find \"gui\" attribute on \"binding\" element");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root(), ""); }),
              "failed to find \"\" attribute on \"material\" element");
    EXPECT_EQ(shaderErrorOf([&] { (void)readBoolAttribute(document.root(), "srgb"); }),
              "failed to find \"srgb\" attribute on \"material\" element");
}

TEST(XmlAttributes, AnEmptyOneIsPresent) {
    const Document document("<binding desc=\"\"/>");
    EXPECT_EQ(readAttribute(document.root(), "desc"), "");
    writeAttribute(document.root(), "tag", "");
    EXPECT_EQ(document.text(), "<binding desc=\"\" tag=\"\"/>");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "");
}

TEST(XmlAttributes, KeepAnyText) {
    const char* const texts[] = {
        "Größe",
        "日本語 – テクスチャ",
        "🎨",
        "a < b && c > \"d\" 'e'",
        "  two  blanks  ",
        "&amp;",
        "line\nbreak\ttab\r",
        "1.5, 2.5",
        "100%",
    };
    for (const char* text : texts) {
        const Document document("<binding/>");
        writeAttribute(document.root(), "desc", text);
        EXPECT_EQ(readAttribute(document.root(), "desc"), text);
        const Document saved(document.text());
        ASSERT_NE(saved.root(), nullptr) << text;
        EXPECT_EQ(readAttribute(saved.root(), "desc"), text) << "after saving and parsing";
    }
}

TEST(XmlAttributes, NamesMayBeNonAscii) {
    const Document document("<größe/>");
    writeAttribute(document.root(), "länge", "1");
    EXPECT_EQ(readAttribute(document.root(), "länge"), "1");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root(), "höhe"); }),
              "failed to find \"höhe\" attribute on \"größe\" element");
}

TEST(XmlAttributes, ReadsEntitiesResolved) {
    const Document document(
        "<!DOCTYPE binding [<!ENTITY maker \"Patina\">]><binding tag=\"&lt;&maker;&#33;\"/>");
    EXPECT_EQ(readAttribute(document.root(), "tag"), "<Patina!");
}

TEST(XmlAttributes, ReadsDefaultsOfTheDtd) {
    const Document document("<!DOCTYPE binding [<!ELEMENT binding EMPTY>"
                            "<!ATTLIST binding gui CDATA \"none\" srgb CDATA \"Yes\" signed CDATA \"No\" "
                            "odd CDATA \"yes\" tag CDATA #IMPLIED>]>"
                            "<binding/>");
    EXPECT_EQ(readAttribute(document.root(), "gui"), "none");
    EXPECT_TRUE(readBoolAttribute(document.root(), "srgb"));
    EXPECT_FALSE(readBoolAttribute(document.root(), "signed"));
    EXPECT_EQ(shaderErrorOf([&] { (void)readBoolAttribute(document.root(), "odd"); }),
              "attribute \"odd\" contains invalid boolean data \"yes\"");
    EXPECT_EQ(shaderErrorOf([&] { (void)readAttribute(document.root(), "tag"); }),
              "failed to find \"tag\" attribute on \"binding\" element");
    EXPECT_TRUE(hasAttribute(document.root(), "gui"));
    EXPECT_FALSE(hasAttribute(document.root(), "tag"));
    writeAttribute(document.root(), "gui", "slider");
    EXPECT_EQ(readAttribute(document.root(), "gui"), "slider") << "what is written goes before the default";
}

TEST(XmlAttributes, PresenceDoesNotDependOnTheValue) {
    const Document document("<binding desc=\"\" tag=\"Diffuse\"/>");
    EXPECT_TRUE(hasAttribute(document.root(), "desc"));
    EXPECT_TRUE(hasAttribute(document.root(), "tag"));
    EXPECT_FALSE(hasAttribute(document.root(), "Tag"));
    EXPECT_FALSE(hasAttribute(nullptr, "tag"));
}

TEST(XmlBoolAttributes, AreYesAndNo) {
    const Document document("<binding/>");
    writeBoolAttribute(document.root(), "srgb", true);
    EXPECT_EQ(document.text(), "<binding srgb=\"Yes\"/>");
    EXPECT_TRUE(readBoolAttribute(document.root(), "srgb"));
    writeBoolAttribute(document.root(), "srgb", false);
    EXPECT_EQ(document.text(), "<binding srgb=\"No\"/>");
    EXPECT_FALSE(readBoolAttribute(document.root(), "srgb"));
}

struct InvalidBool {
    const char* text;
    const char* message;
};

constexpr InvalidBool invalidBools[] = {
    {"yes", "attribute \"srgb\" contains invalid boolean data \"yes\""},
    {"YES", "attribute \"srgb\" contains invalid boolean data \"YES\""},
    {"true", "attribute \"srgb\" contains invalid boolean data \"true\""},
    {"1", "attribute \"srgb\" contains invalid boolean data \"1\""},
    {" Yes", "attribute \"srgb\" contains invalid boolean data \" Yes\""},
    {"Yes ", "attribute \"srgb\" contains invalid boolean data \"Yes \""},
    {"Yess", "attribute \"srgb\" contains invalid boolean data \"Yess\""},
    {"Ye", "attribute \"srgb\" contains invalid boolean data \"Ye\""},
    {"no", "attribute \"srgb\" contains invalid boolean data \"no\""},
    {"NO", "attribute \"srgb\" contains invalid boolean data \"NO\""},
    {"false", "attribute \"srgb\" contains invalid boolean data \"false\""},
    {"0", "attribute \"srgb\" contains invalid boolean data \"0\""},
    {" No", "attribute \"srgb\" contains invalid boolean data \" No\""},
    {"", "attribute \"srgb\" contains invalid boolean data \"\""},
    {"ja ü", "attribute \"srgb\" contains invalid boolean data \"ja ü\""},
};

TEST(XmlBoolAttributes, AcceptNothingElse) {
    for (const auto& [text, message] : invalidBools) {
        const Document document("<binding/>");
        writeAttribute(document.root(), "srgb", text);
        EXPECT_EQ(shaderErrorOf([&] { (void)readBoolAttribute(document.root(), "srgb"); }), message);
    }
}

TEST(XmlAttributes, NothingIsWrittenWithoutAnElement) {
    writeAttribute(nullptr, "tag", "Diffuse");
    writeBoolAttribute(nullptr, "srgb", true);
    const std::string text = "<material>text<!--comment--><?target data?><![CDATA[data]]></material>";
    const Document document(text);
    for (xmlNode* child = document.root()->children; child != nullptr; child = child->next) {
        writeAttribute(child, "tag", "Diffuse");
        writeBoolAttribute(child, "srgb", true);
    }
    writeAttribute(document.self(), "tag", "Diffuse");
    writeBoolAttribute(document.self(), "srgb", true);
    EXPECT_EQ(document.text(), text);
}

TEST(XmlAttributes, NothingIsReadWithoutAnElement) {
    EXPECT_THROW((void)readAttribute(nullptr, "tag"), ShaderError);
    EXPECT_THROW((void)readBoolAttribute(nullptr, "tag"), ShaderError);
    const Document document("<material>text<!--comment--><?target data?></material>");
    for (xmlNode* child = document.root()->children; child != nullptr; child = child->next) {
        EXPECT_THROW((void)readAttribute(child, "tag"), ShaderError);
        EXPECT_THROW((void)readBoolAttribute(child, "tag"), ShaderError);
    }
    EXPECT_THROW((void)readAttribute(document.self(), "tag"), ShaderError);
}

TEST(XmlAttributes, IgnoreTheLocaleOfTheProcess) {
    const testing::CommaLocale comma;
    const Document document("<binding/>");
    writeAttribute(document.root(), "min", "0.5, 1234.5");
    writeBoolAttribute(document.root(), "srgb", true);
    EXPECT_EQ(document.text(), "<binding min=\"0.5, 1234.5\" srgb=\"Yes\"/>");
    EXPECT_EQ(readAttribute(document.root(), "min"), "0.5, 1234.5");
    EXPECT_TRUE(readBoolAttribute(document.root(), "srgb"));
}

} // namespace
} // namespace patina
