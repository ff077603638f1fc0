// SPDX-License-Identifier: Apache-2.0
// The arithmetic of numbers: which operations two types have, and their loops.
#include "nodes/values/arithmetic_kernels.h"

#include <algorithm>
#include <array>

#include "core/conversion.h"
#include "core/network_manager.h"
#include "nodes/values/lanes.h"

namespace weft {

namespace {

using enum NumericType;

constexpr int64_t done = -1;

// Operations on two numbers of one type.

struct Add {
    template <typename T>
    static T apply(T a, T b) {
        if constexpr (std::is_integral_v<T>)
            return tidemark::wrappingAdd(a, b);
        else
            return a + b;
    }
};
struct Sub {
    template <typename T>
    static T apply(T a, T b) {
        if constexpr (std::is_integral_v<T>)
            return tidemark::wrappingSub(a, b);
        else
            return a - b;
    }
};
struct Mul {
    template <typename T>
    static T apply(T a, T b) {
        if constexpr (std::is_integral_v<T>)
            return tidemark::wrappingMul(a, b);
        else
            return a * b;
    }
};
struct Div {
    template <typename T>
    static T apply(T a, T b) {
        if constexpr (std::is_integral_v<T>)
            return tidemark::wrappingDiv(a, b);
        else
            return a / b;
    }
};

// Operations on two elements.

template <typename Operation, typename A, typename B>
struct OnNumbers {
    static A apply(A a, B b) {
        if constexpr (std::is_integral_v<A> && std::is_integral_v<B>) {
            using Wide = std::conditional_t<sizeof(B) >= sizeof(A), B, A>;
            return static_cast<A>(Operation::template apply<Wide>(a, b));
        } else {
            const float outcome =
                Operation::template apply<float>(static_cast<float>(a), static_cast<float>(b));
            if constexpr (std::is_integral_v<A>)
                return tidemark::truncateTo<A>(outcome);
            else
                return outcome;
        }
    }
};

template <typename A, typename B>
struct Scale {
    static A apply(const A& a, B b) { return a * static_cast<float>(b); }
};

template <typename A, typename B>
struct ScaleByReciprocal {
    static A apply(const A& a, B b) { return a * (1.0f / static_cast<float>(b)); }
};

struct TransformPoint {
    static Vector3<float> apply(const Vector3<float>& p, const Matrix4<float>& m) {
        return {p.x * m.x[0][0] + p.y * m.x[1][0] + p.z * m.x[2][0] + m.x[3][0],
                p.x * m.x[0][1] + p.y * m.x[1][1] + p.z * m.x[2][1] + m.x[3][1],
                p.x * m.x[0][2] + p.y * m.x[1][2] + p.z * m.x[2][2] + m.x[3][2]};
    }
};

struct MatrixProduct {
    static Matrix4<float> apply(const Matrix4<float>& a, const Matrix4<float>& b) { return a * b; }
};

// Hamilton's product, `a` on the left.
struct QuaternionProduct {
    static Quaternion<float> apply(const Quaternion<float>& a, const Quaternion<float>& b) {
        return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
                a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
                a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
                a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
    }
};

// Loops over memory of equal length.

template <typename Op, typename A, typename B>
void lanes(const A* a, const B* b, A* result, std::size_t count) {
    if (count == 1) {
        *result = Op::apply(*a, *b);
        return;
    }
    const auto apply = [](const A& left, const B& right) { return Op::apply(left, right); };
    // Wide instructions gain nothing with structured elements.
    if constexpr (std::is_arithmetic_v<A>) {
        tidemark::mapLanes(result, count, apply, a, b);
    } else {
        tidemark::mapLanesInline(result, count, apply, a, b);
    }
}

// What the frame below runs on stretches of equal length: the answer is as of a kernel.

template <typename Op>
struct ByElement {
    static constexpr bool readsResult = false;
    template <typename A, typename B>
    static int64_t run(const A* a, const B* b, A* result, std::size_t count) {
        lanes<Op>(a, b, result, count);
        return done;
    }
    template <typename A, typename B>
    static void runRight(const A* a, B right, A* result, std::size_t count) {
        tidemark::mapLanes(
            result, count, [right](A left) { return Op::apply(left, right); }, a);
    }
    template <typename A, typename B>
    static void runLeft(A left, const B* b, A* result, std::size_t count) {
        tidemark::mapLanes(
            result, count, [left](B right) { return Op::apply(left, right); }, b);
    }
};

template <typename Loop>
constexpr bool takesOneNumber = false;
template <typename Op>
constexpr bool takesOneNumber<ByElement<Op>> = true;

// Structured elements as the plain floats that they are made of.
template <typename Operation>
struct ByComponent {
    static constexpr bool readsResult = false;
    template <typename T>
    static int64_t run(const T* a, const T* b, T* result, std::size_t count) {
        static_assert(sizeof(T) % sizeof(float) == 0 && alignof(T) == alignof(float));
        lanes<OnNumbers<Operation, float, float>>(
            reinterpret_cast<const float*>(a), reinterpret_cast<const float*>(b),
            reinterpret_cast<float*>(result), count * (sizeof(T) / sizeof(float)));
        return done;
    }
};

struct SkipZeroDivisors {
    static constexpr bool readsResult = true;
    static int64_t run(const int32_t* a, const int32_t* b, int32_t* result, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            if (b[i] != 0) result[i] = tidemark::wrappingDiv(a[i], b[i]);
        }
        return done;
    }
};

struct StopAtZeroDivisors {
    static constexpr bool readsResult = true;
    template <typename A, typename B>
    static int64_t run(const A* a, const B* b, A* result, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            if (b[i] == 0) return static_cast<int64_t>(i);
            result[i] = OnNumbers<Div, A, B>::apply(a[i], b[i]);
        }
        return done;
    }
};

// The frame: sizes, the stretch of equal length, and the rest against a repeated element.

constexpr std::size_t elementsBetweenPolls = std::size_t(1) << 20;

template <typename T>
class Repeated {
public:
    static constexpr std::size_t most = sizeof(T) > 16 ? 4 : 64;

    Repeated(const T& element, std::size_t wanted) {
        std::fill_n(elements_.begin(), std::min(most, wanted), element);
    }
    const T* data() const { return elements_.data(); }

private:
    std::array<T, most> elements_;
};

// `step` works on the stretch from `first` on, at most `most` elements at once.
template <typename Step>
int64_t stretches(std::size_t first, std::size_t end, std::size_t most,
                  const NetworkManager* manager, Step step) {
    std::size_t sincePoll = 0;
    while (first < end) {
        const std::size_t count = std::min(most, end - first);
        const int64_t stopped = step(first, count);
        if (stopped != done) return static_cast<int64_t>(first) + stopped;
        first += count;
        sincePoll += count;
        if (sincePoll >= elementsBetweenPolls) {
            if (manager) manager->pollInterrupt();
            sincePoll = 0;
        }
    }
    return done;
}

template <typename Loop, typename A, typename B>
int64_t restOf(const A* a, std::size_t aCount, const B* b, std::size_t bCount, A* result,
               const NetworkManager* manager) {
    // The last element is read only now: it may be one that the loop has just written.
    if constexpr (takesOneNumber<Loop> && std::is_arithmetic_v<A> && std::is_arithmetic_v<B>) {
        const bool isRight = aCount > bCount;
        const A left = a[aCount - 1];
        const B right = b[bCount - 1];
        return stretches(std::min(aCount, bCount), std::max(aCount, bCount), elementsBetweenPolls,
                         manager, [&](std::size_t i, std::size_t count) {
                             if (isRight)
                                 Loop::runRight(a + i, right, result + i, count);
                             else
                                 Loop::runLeft(left, b + i, result + i, count);
                             return done;
                         });
    }
    if (aCount > bCount) {
        const Repeated<B> last(b[bCount - 1], aCount - bCount);
        return stretches(bCount, aCount, last.most, manager, [&](std::size_t i, std::size_t count) {
            return Loop::run(a + i, last.data(), result + i, count);
        });
    }
    const Repeated<A> last(a[aCount - 1], bCount - aCount);
    return stretches(aCount, bCount, last.most, manager, [&](std::size_t i, std::size_t count) {
        return Loop::run(last.data(), b + i, result + i, count);
    });
}

template <typename Loop, typename A, typename B>
int64_t kernel(const Numeric& a, const Numeric& b, Numeric& result) {
    Array<A>& out = result.refValues<A>();
    const Array<A>& first = a.values<A>();
    const Array<B>& second = b.values<B>();
    const uint32_t firstCount = first.size();
    const uint32_t secondCount = second.size();
    if (firstCount == 1 && secondCount == 1 && out.size() == 1) {
        result.setSize(1);
        return Loop::run(first.data(), second.data(), out.data(), 1);
    }
    const uint32_t equal = std::min(firstCount, secondCount);
    const uint32_t count = equal == 0 ? 0 : std::max(firstCount, secondCount);
    if constexpr (!Loop::readsResult && std::is_trivially_copyable_v<A>) {
        out.resizeForOverwrite(count);
    } else {
        out.resize(count);
    }
    result.setSize(count);
    const NetworkManager* manager = result.networkManager();
    const int64_t stopped =
        stretches(0, equal, elementsBetweenPolls, manager, [&](std::size_t i, std::size_t length) {
            return Loop::run(first.data() + i, second.data() + i, out.data() + i, length);
        });
    if (stopped != done || equal == count) return stopped;
    return restOf<Loop>(first.data(), firstCount, second.data(), secondCount, out.data(), manager);
}

template <typename A>
int64_t copy(const Numeric& a, const Numeric&, Numeric& result) {
    if (&result != &a) result.setValues(a.values<A>());
    return done;
}

// The choice of a kernel.

template <typename Operation, typename A, typename B>
ArithmeticKernel onNumbers() {
    if constexpr (std::is_same_v<Operation, Div> && std::is_integral_v<A> &&
                  std::is_integral_v<B>) {
        if constexpr (sizeof(A) == 4 && sizeof(B) == 4)
            return kernel<SkipZeroDivisors, A, B>;
        else
            return kernel<StopAtZeroDivisors, A, B>;
    } else {
        return kernel<ByElement<OnNumbers<Operation, A, B>>, A, B>;
    }
}

template <typename Operation, typename A>
ArithmeticKernel forNumber(NumericType b) {
    switch (b) {
    case integer:
        return onNumbers<Operation, A, int32_t>();
    case integer64:
        return onNumbers<Operation, A, int64_t>();
    default:
        return onNumbers<Operation, A, float>();
    }
}

// Vectors and colours: against their like by component, against numbers by one factor.
template <template <typename, typename> typename ByNumber, typename Operation, typename A>
ArithmeticKernel forTuple(NumericType b) {
    switch (b) {
    case integer:
        return kernel<ByElement<ByNumber<A, int32_t>>, A, int32_t>;
    case integer64:
        return kernel<ByElement<ByNumber<A, int64_t>>, A, int64_t>;
    case real:
        return kernel<ByElement<ByNumber<A, float>>, A, float>;
    default:
        return kernel<ByComponent<Operation>, A, A>;
    }
}

template <typename Operation>
ArithmeticKernel forSum(NumericType a, NumericType b) {
    switch (a) {
    case none:
        return nullptr;
    case integer:
        return forNumber<Operation, int32_t>(b);
    case integer64:
        return forNumber<Operation, int64_t>(b);
    case real:
        return forNumber<Operation, float>(b);
    case vector3:
        return kernel<ByComponent<Operation>, Vector3<float>, Vector3<float>>;
    case color4:
        return kernel<ByComponent<Operation>, Color4<float>, Color4<float>>;
    case quaternion:
        return kernel<ByComponent<Operation>, Quaternion<float>, Quaternion<float>>;
    case matrix4:
        return kernel<ByComponent<Operation>, Matrix4<float>, Matrix4<float>>;
    }
    return nullptr;
}

ArithmeticKernel forProduct(NumericType a, NumericType b) {
    switch (a) {
    case vector3:
        if (b == matrix4) {
            return kernel<ByElement<TransformPoint>, Vector3<float>, Matrix4<float>>;
        }
        return forTuple<Scale, Mul, Vector3<float>>(b);
    case color4:
        return forTuple<Scale, Mul, Color4<float>>(b);
    case quaternion:
        return kernel<ByElement<QuaternionProduct>, Quaternion<float>, Quaternion<float>>;
    case matrix4:
        return kernel<ByElement<MatrixProduct>, Matrix4<float>, Matrix4<float>>;
    default:
        return forSum<Mul>(a, b);
    }
}

ArithmeticKernel forQuotient(NumericType a, NumericType b) {
    switch (a) {
    case vector3:
        return forTuple<ScaleByReciprocal, Div, Vector3<float>>(b);
    case color4:
        return forTuple<ScaleByReciprocal, Div, Color4<float>>(b);
    default:
        return forSum<Div>(a, b);
    }
}

ArithmeticKernel copyKernel(NumericType a) {
    ArithmeticKernel found = nullptr;
    withElementType(a, [&]<typename A>() { found = copy<A>; });
    return found;
}

// Indexed by the selector of `a`.
using Row = std::array<NumericType, 5>;
struct Rows {
    std::array<Row, 8> types;
    std::array<uint8_t, 8> counts;
};

constexpr Rows sumRows = {{{{},
                            {integer, integer64, real},
                            {integer64, integer, real},
                            {real, integer, integer64},
                            {vector3},
                            {color4},
                            {quaternion},
                            {matrix4}}},
                          {0, 3, 3, 3, 1, 1, 1, 1}};
constexpr Rows productRows = {{{{},
                                {integer, integer64, real},
                                {integer64, integer, real},
                                {real, integer, integer64},
                                {vector3, real, integer, integer64, matrix4},
                                {color4, real, integer, integer64},
                                {quaternion},
                                {matrix4}}},
                              {0, 3, 3, 3, 5, 4, 1, 1}};
constexpr Rows quotientRows = {{{{},
                                 {integer, integer64, real},
                                 {integer64, integer, real},
                                 {real, integer, integer64},
                                 {vector3, real, integer, integer64},
                                 {color4, real, integer, integer64},
                                 {},
                                 {}}},
                               {0, 3, 3, 3, 4, 4, 0, 0}};

const Rows& rowsOf(Arithmetic operation) {
    if (operation == Arithmetic::mul) return productRows;
    return operation == Arithmetic::div ? quotientRows : sumRows;
}

} // namespace

std::span<const NumericType> allowedSecondTypes(Arithmetic operation, NumericType a) {
    const Rows& rows = rowsOf(operation);
    const auto selector = static_cast<std::size_t>(a);
    return std::span(rows.types[selector]).first(rows.counts[selector]);
}

ArithmeticKernel arithmeticKernel(Arithmetic operation, NumericType a, NumericType b) {
    if (b == none) return copyKernel(a);
    const std::span<const NumericType> allowed = allowedSecondTypes(operation, a);
    if (std::find(allowed.begin(), allowed.end(), b) == allowed.end()) return nullptr;
    switch (operation) {
    case Arithmetic::add:
        return forSum<Add>(a, b);
    case Arithmetic::sub:
        return forSum<Sub>(a, b);
    case Arithmetic::mul:
        return forProduct(a, b);
    case Arithmetic::div:
        return forQuotient(a, b);
    }
    return nullptr;
}

} // namespace weft
