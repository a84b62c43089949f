#pragma once

#include <functional>
#include <string>
#include <string_view>

// Returns the width of a text in points, which increases with the text.
using MeasureFunction = std::function<float(std::string_view)>;

// The name as it is shown in `available` points: complete, or shortened by whole characters and
// followed by "…". A single character is kept even if it does not fit. [any]
std::string FitName(const std::string& name, double available, const MeasureFunction& measure);
