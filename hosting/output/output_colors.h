#pragma once

#include "text_style.h"

#include <QColor>

#include <array>
#include <cstddef>

// The colours that programs can choose for their output, legible on a light or dark background.
// [any]
inline const std::array<QColor, TextStyle::kColors>& OutputColors(const QColor& background)
{
    static const std::array<QColor, TextStyle::kColors> kOnLight{{{0x1f, 0x23, 0x28},
                                                                  {0xb3, 0x20, 0x2c},
                                                                  {0x0f, 0x74, 0x2f},
                                                                  {0x86, 0x58, 0x00},
                                                                  {0x05, 0x50, 0xae},
                                                                  {0x7a, 0x3f, 0xd0},
                                                                  {0x0b, 0x6b, 0x76},
                                                                  {0x57, 0x60, 0x6a},
                                                                  {0x5f, 0x69, 0x73},
                                                                  {0xc2, 0x1f, 0x2e},
                                                                  {0x16, 0x78, 0x34},
                                                                  {0x8a, 0x5c, 0x00},
                                                                  {0x1f, 0x66, 0xb8},
                                                                  {0x98, 0x36, 0xb0},
                                                                  {0x0b, 0x6e, 0x80},
                                                                  {0x3d, 0x44, 0x4d}}};
    static const std::array<QColor, TextStyle::kColors> kOnDark{{{0x97, 0xa0, 0xaa},
                                                                 {0xff, 0x8a, 0x80},
                                                                 {0x8f, 0xd1, 0x9e},
                                                                 {0xe3, 0xc0, 0x78},
                                                                 {0x79, 0xb8, 0xff},
                                                                 {0xc6, 0xa0, 0xf6},
                                                                 {0x7f, 0xd4, 0xdc},
                                                                 {0xd5, 0xd9, 0xde},
                                                                 {0xa4, 0xad, 0xb7},
                                                                 {0xff, 0xa1, 0x98},
                                                                 {0xa6, 0xe3, 0xb0},
                                                                 {0xf2, 0xd4, 0x92},
                                                                 {0xa5, 0xd1, 0xff},
                                                                 {0xdc, 0xbc, 0xff},
                                                                 {0xa1, 0xe6, 0xec},
                                                                 {0xff, 0xff, 0xff}}};
    constexpr int kDark = 128;
    return background.lightness() < kDark ? kOnDark : kOnLight;
}
