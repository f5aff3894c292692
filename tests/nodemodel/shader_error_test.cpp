#include "nodemodel/shader_error.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace patina {
namespace {

static_assert(std::is_base_of_v<std::exception, ShaderError>);
static_assert(std::is_nothrow_copy_constructible_v<ShaderError>);
static_assert(std::is_nothrow_copy_assignable_v<ShaderError>);
static_assert(std::is_nothrow_move_constructible_v<ShaderError>);
static_assert(std::is_nothrow_destructible_v<ShaderError>);
static_assert(std::is_constructible_v<ShaderError, std::string>);
static_assert(!std::is_convertible_v<std::string, ShaderError>);
static_assert(noexcept(std::declval<const ShaderError&>().what()));

/// Longer than any string keeps inside itself.
const char* const longMessage = "cannot create \"a type name that needs memory of its own\" node";

TEST(ShaderError, CarriesItsMessage) {
    EXPECT_STREQ(ShaderError(longMessage).what(), longMessage);
    EXPECT_STREQ(ShaderError("").what(), "");
    EXPECT_STREQ(ShaderError("Größe, 100%").what(), "Größe, 100%");
}

TEST(ShaderError, TheMessageSurvivesTheOriginal) {
    auto original = std::make_unique<ShaderError>(longMessage);
    const ShaderError copy(*original);
    ShaderError assigned("other");
    assigned = *original;
    original.reset();
    EXPECT_STREQ(copy.what(), longMessage);
    EXPECT_STREQ(assigned.what(), longMessage);
}

TEST(ShaderError, OwnsItsMessage) {
    std::string message = longMessage;
    const ShaderError error(message);
    message.assign(message.size(), 'x');
    EXPECT_STREQ(error.what(), longMessage);
}

TEST(ShaderError, IsCaughtAsAStandardException) {
    try {
        throw ShaderError(longMessage);
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), longMessage);
        return;
    }
    FAIL();
}

TEST(ShaderError, CanBeCarriedAndThrownAgain) {
    std::exception_ptr carried;
    try {
        throw ShaderError(longMessage);
    } catch (...) {
        carried = std::current_exception();
    }
    try {
        std::rethrow_exception(carried);
    } catch (const ShaderError& error) {
        EXPECT_STREQ(error.what(), longMessage);
        return;
    }
    FAIL();
}

} // namespace
} // namespace patina
