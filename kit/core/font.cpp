#include "Font.h"

namespace {

constexpr BFont kPlainFont;

}  // namespace

const BFont* const be_plain_font = &kPlainFont;
