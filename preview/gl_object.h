#pragma once

#include <utility>

namespace patina::preview {

/// Owns an object of OpenGL, which goes with it. Threads: as the context that made it.
class GlObject {
public:
    using Release = void (*)(unsigned int name);

    GlObject() = default;
    GlObject(unsigned int name, Release release) : name_(name), release_(release) {}
    ~GlObject() {
        if (name_ != 0) {
            release_(name_);
        }
    }
    GlObject(GlObject&& other) noexcept : name_(std::exchange(other.name_, 0)), release_(other.release_) {}
    GlObject& operator=(GlObject&& other) noexcept {
        std::swap(name_, other.name_);
        std::swap(release_, other.release_);
        return *this;
    }
    GlObject(const GlObject&) = delete;
    GlObject& operator=(const GlObject&) = delete;

    unsigned int name() const { return name_; }

private:
    unsigned int name_ = 0;
    Release release_ = nullptr;
};

} // namespace patina::preview
