// SPDX-License-Identifier: Apache-2.0
// The small value records of the whole system: vectors, colours, quaternions, matrices, boxes and
// pairs, and what an array of them holds where nothing was written yet.
#pragma once

#include <Imath/ImathBox.h>
#include <Imath/ImathColor.h>
#include <Imath/ImathMatrix.h>
#include <Imath/ImathVec.h>

#include <optional>

#include "core/array.h"

namespace tidemark {

/// x, y, z.
template <typename T>
using Vector3 = Imath::Vec3<T>;

/// r, g, b, a.
template <typename T>
using Color4 = Imath::Color4<T>;

/// Row vectors, translation in the fourth row: a point goes as (x, y, z, 1) times the matrix.
template <typename T>
using Matrix4 = Imath::Matrix44<T>;

/// A minimum and a maximum corner; empty (minimum above maximum) when made without arguments.
template <typename T>
using Box3 = Imath::Box<Imath::Vec3<T>>;

/// x, y, z, w in storage order; the identity rotation when made without arguments. Arithmetic on
/// quaternions belongs to the nodes that define it.
template <typename T>
struct Quaternion {
    T x = T(0);
    T y = T(0);
    T z = T(0);
    T w = T(1);

    friend bool operator==(const Quaternion&, const Quaternion&) = default;
};

template <typename A, typename B>
struct Tuple2 {
    A first{};
    B second{};

    friend bool operator==(const Tuple2&, const Tuple2&) = default;
};

template <typename T>
using Optional = std::optional<T>;

template <typename T>
struct ElementDefault<Imath::Vec3<T>> {
    static Imath::Vec3<T> value() { return Imath::Vec3<T>(T(0)); }
};
template <typename T>
struct ElementDefault<Imath::Color4<T>> {
    static Imath::Color4<T> value() { return Imath::Color4<T>(T(0), T(0), T(0), T(1)); }
};
template <typename T>
struct ElementDefault<Quaternion<T>> {
    static Quaternion<T> value() { return Quaternion<T>(); }
};
template <typename T>
struct ElementDefault<Imath::Matrix44<T>> {
    static Imath::Matrix44<T> value() { return Imath::Matrix44<T>(); }
};

template <typename T>
constexpr bool isPayloadElement<Imath::Vec3<T>> = true;
template <typename T>
constexpr bool isPayloadElement<Imath::Color4<T>> = true;
template <typename T>
constexpr bool isPayloadElement<Quaternion<T>> = true;
template <typename T>
constexpr bool isPayloadElement<Imath::Matrix44<T>> = true;

} // namespace tidemark

namespace weft {
using tidemark::Box3;
using tidemark::Color4;
using tidemark::Matrix4;
using tidemark::Optional;
using tidemark::Quaternion;
using tidemark::Tuple2;
using tidemark::Vector3;
} // namespace weft
