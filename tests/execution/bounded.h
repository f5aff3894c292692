#pragma once

#include <vector>

namespace patina::testing {

// Arithmetic that knows how wrong a GPU may be: running error analysis in double precision.
//
// The figures are those that Vulkan's SPIR-V environment guarantees for 32-bit floats and for 16-bit floats,
// which GLSL 4.x and ESSL 3.x repeat for highp: + - * are correctly rounded, a division is within 2.5 ULP,
// and what is made of other operations inherits their errors. Desktop GLSL computes half as float, a phone
// may compute it in 16 bits; both lie within the half bound.

/// What a kind of number promises.
struct Format {
    const char* name;
    double unit;        ///< relative error of a correctly rounded operation: half an ULP
    double smallest;    ///< normal number; anything below may be flushed to zero
    double largest;     ///< finite number
    double logNearOne;  ///< absolute error of log2 between 0.5 and 2; 3 ULP elsewhere
    double exponentUlp; ///< exp2(x) is within exponentUlp + 2|x| ULP
    bool mayBeWider;    ///< whether it may be computed in a wider format: then overflow tells nothing
};

extern const Format floatFormat;
extern const Format halfFormat;

/// The set of numbers that a GPU may give: all that differ from `value` by `error` at most. An infinite value
/// without error is that infinity. An infinite error stands for everything, NaN included: where the languages
/// leave a result undefined.
struct Bounded {
    double value = 0;
    double error = 0;

    double low() const { return value - error; }
    double high() const { return value + error; }
    bool isAnything() const;
    bool isExact() const { return error == 0; }
    bool accepts(double number) const;
};

using BoundedVector = std::vector<Bounded>;

Bounded anything();
/// Everything from low to high.
Bounded between(double low, double high);
/// What either may be.
Bounded either(const Bounded& left, const Bounded& right);

/// The operations of one format.
class Arithmetic {
public:
    explicit Arithmetic(const Format& format) : format_(&format) {}

    /// A number that a program or its inputs hold, rounded to the format.
    Bounded number(double value) const;
    /// A number as printed in a program, with six significant digits.
    Bounded literal(double value) const;
    /// A value of any format in this one.
    Bounded convert(const Bounded& value) const;

    Bounded add(const Bounded& left, const Bounded& right) const;
    Bounded subtract(const Bounded& left, const Bounded& right) const;
    Bounded multiply(const Bounded& left, const Bounded& right) const;
    Bounded divide(const Bounded& left, const Bounded& right) const;
    Bounded power(const Bounded& base, const Bounded& exponent) const;
    Bounded squareRoot(const Bounded& value) const;
    /// Fractional part, from the floor.
    Bounded fraction(const Bounded& value) const;
    /// left*(1 - t) + right*t, or left + t*(right - left): the languages allow both.
    Bounded mix(const Bounded& left, const Bounded& right, const Bounded& t) const;
    Bounded smoothStep(const Bounded& t) const; ///< from 0 to 1
    /// The sum of products, in any order.
    Bounded dot(const BoundedVector& left, const BoundedVector& right) const;
    /// A texel's channel: n/255.
    Bounded normalised(int channel) const;

private:
    /// A result with the error that its operands brought in, and `ulps` of its own.
    Bounded rounded(double value, double inherited, double ulps) const;
    /// A correctly rounded result.
    Bounded rounded(double value, double inherited) const;
    Bounded logarithm(const Bounded& value) const;
    Bounded exponential(const Bounded& value) const;
    bool isRepresentable(double value) const;

    const Format* format_;
};

// These round nothing.
Bounded floorOf(const Bounded& value);
Bounded ceilingOf(const Bounded& value);
Bounded absolute(const Bounded& value);
Bounded negated(const Bounded& value);
Bounded minimum(const Bounded& left, const Bounded& right);
Bounded maximum(const Bounded& left, const Bounded& right);
Bounded saturate(const Bounded& value);
/// Undefined when the limits are the wrong way round.
Bounded clamp(const Bounded& value, const Bounded& low, const Bounded& high);
/// (left < right) ? yes : no. Operands that overlap may be seen in either order.
Bounded selectLess(const Bounded& left, const Bounded& right, const Bounded& yes, const Bounded& no);

} // namespace patina::testing
