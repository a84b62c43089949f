#pragma once

#include <functional>

// A callable with one owner: it may hold what cannot be copied. Moved, never copied; an empty one
// is false and must not be called.
template <class Signature>
using unique_function = std::move_only_function<Signature>;
