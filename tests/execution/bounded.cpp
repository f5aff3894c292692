#include "tests/execution/bounded.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace patina::testing {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double correctlyRounded = 0.5;
constexpr double divisionUlps = 2.5;
constexpr double inverseSquareRootUlps = 2;

Bounded exactly(double value) { return {value, 0}; }

} // namespace

const Format floatFormat = {"float",
                            std::ldexp(1, -24),
                            std::ldexp(1, -126),
                            std::numeric_limits<float>::max(),
                            std::ldexp(1, -21),
                            3,
                            false};
const Format halfFormat = {"half", std::ldexp(1, -11), std::ldexp(1, -14), 65504, std::ldexp(1, -7), 1, true};

bool Bounded::isAnything() const { return std::isinf(error); }

bool Bounded::accepts(double number) const {
    if (isAnything()) {
        return true;
    }
    return number == value || std::abs(number - value) <= error;
}

Bounded anything() { return {0, infinity}; }

Bounded between(double low, double high) {
    const double value = low + (high - low) / 2;
    return {value, std::max(high - value, value - low)};
}

Bounded either(const Bounded& left, const Bounded& right) {
    if (left.isAnything() || right.isAnything()) {
        return anything();
    }
    if (left.value == right.value) {
        return {left.value, std::max(left.error, right.error)};
    }
    const Bounded both = between(std::min(left.low(), right.low()), std::max(left.high(), right.high()));
    return std::isfinite(both.value) ? both : anything();
}

// Whether an operation that is correctly rounded gives this value itself. A value that was rounded to double
// on the way and lies in the format then is its closest number there too.
bool Arithmetic::isRepresentable(double value) const {
    if (std::isinf(value) || value == 0) {
        return true;
    }
    if (std::abs(value) < format_->smallest || std::abs(value) > format_->largest) {
        return false;
    }
    int exponent = 0;
    const double scaled = std::frexp(value, &exponent) / format_->unit;
    return scaled == std::nearbyint(scaled);
}

Bounded Arithmetic::rounded(double value, double inherited, double ulps) const {
    if (std::isnan(value) || !std::isfinite(inherited)) {
        return anything();
    }
    if (std::isinf(value)) {
        return inherited == 0 ? exactly(value) : anything();
    }
    const double reach = std::abs(value) + inherited;
    double error = inherited + 2 * ulps * format_->unit * reach;
    if (reach + error > format_->largest) {
        // only what certainly rounds beyond the largest number is certainly infinite
        const bool isInfinite =
            !format_->mayBeWider && std::abs(value) - error > format_->largest * (1 + format_->unit);
        return isInfinite ? exactly(std::copysign(infinity, value)) : anything();
    }
    if (std::abs(value) - error < format_->smallest && reach > 0) {
        error += format_->smallest;
    }
    return {value, error};
}

Bounded Arithmetic::rounded(double value, double inherited) const {
    if (inherited == 0 && isRepresentable(value)) {
        return exactly(value);
    }
    return rounded(value, inherited, correctlyRounded);
}

Bounded Arithmetic::number(double value) const { return rounded(value, 0); }

Bounded Arithmetic::literal(double value) const {
    // from a float of 32 bits, which a program's constants are made of
    constexpr int digitsBehindFirst = 5;
    std::array<char, 32> text = {};
    const char* end =
        std::to_chars(text.data(), text.data() + text.size(), static_cast<double>(static_cast<float>(value)),
                      std::chars_format::scientific, digitsBehindFirst)
            .ptr;
    double printed = 0;
    std::from_chars(text.data(), end, printed);
    return number(printed);
}

Bounded Arithmetic::convert(const Bounded& value) const {
    return value.isAnything() ? value : rounded(value.value, value.error);
}

Bounded Arithmetic::add(const Bounded& left, const Bounded& right) const {
    return rounded(left.value + right.value, left.error + right.error);
}

Bounded Arithmetic::subtract(const Bounded& left, const Bounded& right) const {
    return add(left, negated(right));
}

Bounded Arithmetic::multiply(const Bounded& left, const Bounded& right) const {
    if (left.isAnything() || right.isAnything()) {
        return anything();
    }
    const double inherited = left.isExact() && right.isExact()
                                 ? 0
                                 : std::abs(left.value) * right.error + std::abs(right.value) * left.error +
                                       left.error * right.error;
    return rounded(left.value * right.value, inherited);
}

Bounded Arithmetic::divide(const Bounded& left, const Bounded& right) const {
    if (left.isAnything() || right.isAnything()) {
        return anything();
    }
    const double least = std::abs(right.value) - right.error;
    if (least <= 0) {
        // by exactly zero: that infinity, unless what is divided may be zero too
        const bool isInfinite = right.isExact() && std::abs(left.value) > left.error;
        return isInfinite ? exactly(left.value / right.value) : anything();
    }
    // the figures hold for divisors whose reciprocals are normal numbers
    if (least < format_->smallest || (std::isfinite(right.value) && right.high() > 1 / format_->smallest)) {
        return anything();
    }
    const double quotient = left.value / right.value;
    if (quotient == 0 && left.isExact()) {
        return exactly(0);
    }
    const double inherited =
        left.isExact() && right.isExact() ? 0 : (left.error + std::abs(quotient) * right.error) / least;
    return rounded(quotient, inherited, divisionUlps);
}

Bounded Arithmetic::logarithm(const Bounded& value) const {
    const double exact = std::log2(value.value);
    const double inherited = std::max(std::log2(value.high()) - exact, exact - std::log2(value.low()));
    constexpr double ulps = 3;
    const double elsewhere = 2 * ulps * format_->unit * (std::abs(exact) + inherited);
    const bool isNearOne = value.high() >= 0.5 && value.low() <= 2;
    return {exact, inherited + std::max(elsewhere, isNearOne ? format_->logNearOne : 0)};
}

Bounded Arithmetic::exponential(const Bounded& value) const {
    const double exact = std::exp2(value.value);
    const double inherited = std::max(std::exp2(value.high()) - exact, exact - std::exp2(value.low()));
    return rounded(exact, inherited, format_->exponentUlp + 2 * (std::abs(value.value) + value.error));
}

Bounded Arithmetic::power(const Bounded& base, const Bounded& exponent) const {
    // exp2( exponent * log2( base ) )
    if (base.isAnything() || exponent.isAnything() || base.low() < 0 || std::isinf(base.value)) {
        return anything();
    }
    if (base.low() > 0) {
        return exponential(multiply(exponent, logarithm(base)));
    }
    if (exponent.low() <= 0) {
        return anything();
    }
    const Bounded highest = base.isExact() ? exactly(0) : power(exactly(base.high()), exponent);
    return highest.isAnything() ? highest : base.isExact() ? highest : between(0, highest.high());
}

Bounded Arithmetic::squareRoot(const Bounded& value) const {
    // 1 / inversesqrt( value )
    if (value.isAnything() || value.low() < 0) {
        return anything();
    }
    if (value.isExact() && value.value == 0) {
        return value;
    }
    const double exact = std::sqrt(value.value);
    const double inherited = std::max(std::sqrt(value.high()) - exact, exact - std::sqrt(value.low()));
    return rounded(exact, inherited, inverseSquareRootUlps + divisionUlps + 1);
}

Bounded Arithmetic::fraction(const Bounded& value) const {
    const Bounded whole = floorOf(value);
    return whole.isAnything() ? whole : whole.isExact() ? subtract(value, whole) : between(0, 1);
}

Bounded Arithmetic::mix(const Bounded& left, const Bounded& right, const Bounded& t) const {
    const Bounded weighted = add(multiply(left, subtract(exactly(1), t)), multiply(right, t));
    const Bounded shifted = add(left, multiply(t, subtract(right, left)));
    return either(weighted, shifted);
}

Bounded Arithmetic::smoothStep(const Bounded& t) const {
    const Bounded position = saturate(divide(subtract(t, exactly(0)), exactly(1)));
    const Bounded slope = subtract(exactly(3), multiply(exactly(2), position));
    return multiply(multiply(position, position), slope);
}

Bounded Arithmetic::dot(const BoundedVector& left, const BoundedVector& right) const {
    double value = 0;
    double magnitude = 0;
    double inherited = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const Bounded product = multiply(left[i], right[i]);
        value += product.value;
        magnitude += std::abs(product.value) + product.error;
        inherited += product.error;
    }
    if (left.size() == 1) {
        return multiply(left[0], right[0]);
    }
    // each partial sum is at most the sum of all magnitudes
    return rounded(value, inherited + static_cast<double>(left.size()) * format_->unit * magnitude);
}

Bounded Arithmetic::normalised(int channel) const {
    if (channel == 0 || channel == 255) {
        return exactly(channel == 0 ? 0 : 1);
    }
    // by a division, or by a product with 1/255, which is rounded too
    return rounded(channel / 255.0, 0, 1.5);
}

Bounded floorOf(const Bounded& value) {
    if (value.isAnything() || std::isinf(value.value)) {
        return value;
    }
    const double low = std::floor(value.low());
    const double high = std::floor(value.high());
    return low == high ? exactly(low) : between(low, high);
}

Bounded ceilingOf(const Bounded& value) { return negated(floorOf(negated(value))); }

Bounded absolute(const Bounded& value) { return {std::abs(value.value), value.error}; }

Bounded negated(const Bounded& value) { return {-value.value, value.error}; }

Bounded minimum(const Bounded& left, const Bounded& right) {
    return negated(maximum(negated(left), negated(right)));
}

Bounded maximum(const Bounded& left, const Bounded& right) {
    if (left.isAnything() || right.isAnything()) {
        return anything();
    }
    if (left.low() >= right.high()) {
        return left;
    }
    if (right.low() >= left.high()) {
        return right;
    }
    return between(std::max(left.low(), right.low()), std::max(left.high(), right.high()));
}

Bounded saturate(const Bounded& value) { return minimum(maximum(value, exactly(0)), exactly(1)); }

Bounded clamp(const Bounded& value, const Bounded& low, const Bounded& high) {
    if (low.isAnything() || high.isAnything() || low.high() > high.low()) {
        return anything();
    }
    return minimum(maximum(value, low), high);
}

Bounded selectLess(const Bounded& left, const Bounded& right, const Bounded& yes, const Bounded& no) {
    if (left.isAnything() || right.isAnything()) {
        return either(yes, no);
    }
    if (left.high() < right.low()) {
        return yes;
    }
    return left.low() >= right.high() ? no : either(yes, no);
}

} // namespace patina::testing
