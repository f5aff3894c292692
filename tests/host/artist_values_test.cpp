#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace patina {
namespace {

TEST(ArtistKeys, AreTheValueAndHowItIsShown) {
    for (const char* key :
         {"default", "uv", "uilabel", "uiunittype", "stream_type", "stream_normalize", "dataset_modifiers"}) {
        EXPECT_TRUE(isArtistKey(key)) << key;
    }
    for (const char* key : {"tag", "gui", "cgname", "desc", "helpUrl", "min", "max", "basic_colour", "srgb",
                            "signed_expanded", "normalised", "kind", "exported_default", "Default", ""}) {
        EXPECT_FALSE(isArtistKey(key)) << key;
    }
}

/// A binding with everything that the graph can set.
std::shared_ptr<Binding> fresh(BindingKind kind) {
    auto binding = createBinding(kind, "Fresh", 2);
    binding->description = "from the graph";
    binding->helpUrl = "http://graph";
    binding->uiType = UiType::Direction;
    binding->cgName = "g_fresh";
    binding->group = "Mesh";
    binding->basicColour = true;
    binding->streamType = "X11Y11Z10n";
    binding->parseMin("1");
    binding->parseMax("3");
    binding->parseDefault("2");
    if (kind == BindingKind::Texture) {
        const auto texture = toTextureBinding(binding);
        texture->srgb = true;
        texture->signedExpanded = true;
        texture->normalised = false;
    }
    return binding;
}

struct RestoreRow {
    BindingKind kind;
    Annotations saved;
    Annotations artist; ///< the artist's keys afterwards
};

const RestoreRow restoreRows[] = {
    {BindingKind::Float, {}, {{"default", "2, 2"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Float, {{"default", "0.5, 7"}}, {{"default", "0.5, 7"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Float, {{"default", "0.5"}}, {{"default", "0.5, 0.5"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Float, {{"default", "red"}}, {{"default", "2, 2"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Float,
     {{"uv", "map2"}, {"uilabel", "Shade"}, {"uiunittype", "angular"}},
     {{"uv", "map2"},
      {"uilabel", "Shade"},
      {"uiunittype", "angular"},
      {"default", "2, 2"},
      {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Uv, {{"default", "map2"}}, {{"default", "map2"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Uv, {{"default", ""}}, {{"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Uv,
     {{"dataset_modifiers", ""}},
     {{"default", "2"}, {"stream_type", "X11Y11Z10n"}, {"dataset_modifiers", ""}}},
    {BindingKind::Texture,
     {{"default", "rust.dds"}},
     {{"default", "rust.dds"}, {"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Position, {{"stream_type", "half"}}, {{"stream_type", "f16"}}},
    {BindingKind::Normal, {{"stream_type", "Packed"}}, {{"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Normal, {{"stream_type", "X11Y11Z10n"}}, {{"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Position, {{"stream_normalize", "yes"}}, {{"stream_type", "X11Y11Z10n"}}},
    {BindingKind::Position,
     {{"stream_type", "short"}, {"stream_normalize", "yes"}},
     {{"stream_type", "s16n"}}},
};

TEST(RestoreArtistValues, SetsTheArtistsKeys) {
    for (const RestoreRow& row : restoreRows) {
        const auto binding = fresh(row.kind);
        restoreArtistValues(*binding, row.saved);
        const std::string trace =
            bindingKindName(*binding) + " " + (row.saved.empty() ? "" : row.saved[0].first);
        EXPECT_EQ(artistValues(*binding), row.artist) << trace;
    }
}

TEST(RestoreArtistValues, LeavesAllElseToTheGraph) {
    const Annotations saved = {{"tag", "Old"},
                               {"gui", "slider"},
                               {"cgname", "g_old"},
                               {"desc", "old"},
                               {"helpUrl", "http://old"},
                               {"min", "8"},
                               {"max", "9"},
                               {"basic_colour", "No"},
                               {"srgb", "No"},
                               {"normalised", "Yes"},
                               {"signed_expanded", "what?"},
                               {"uilabel", "Shade"}};
    for (const BindingKind kind : {BindingKind::Float, BindingKind::Texture, BindingKind::Uv}) {
        const auto expected = fresh(kind);
        expected->uiLabel = "Shade";
        const auto binding = fresh(kind);
        restoreArtistValues(*binding, saved);
        EXPECT_EQ(annotationsOf(*binding), annotationsOf(*expected));
        EXPECT_EQ(binding->name, "Fresh");
        EXPECT_EQ(binding->group, "Mesh");
    }
}

} // namespace
} // namespace patina
