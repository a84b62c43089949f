#pragma once

#include <functional>
#include <string>
#include <string_view>

// The width of a text, in points; it grows with the text.
using MeasureFunction = std::function<float(std::string_view)>;

// The name as it is shown in `available` points: whole, or as much of its beginning as fits with
// "…" behind it, in whole characters. A single character stays where it does not fit.
std::string FitName(const std::string& name, double available, const MeasureFunction& measure);
