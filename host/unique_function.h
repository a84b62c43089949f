#pragma once

#include <functional>

// A callable that can be moved but not copied, so it may capture move-only objects. An empty one
// converts to false and must not be called.
template <class Signature>
using unique_function = std::move_only_function<Signature>;
