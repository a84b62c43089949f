#pragma once

#include "OutlineTableView.h"

#include <cstdint>
#include <string>
#include <string_view>

// The two cells of a row of the listing, owned by the table. [ui]

// The icon and the name of an entry.
class IconTableItem final : public FTableItem {
  public:
    IconTableItem(const std::string_view& name, const std::string_view& path, bool isDirectory);

    // Draws as much of the name as fits. Text() is the drawn text afterwards.
    void DrawItem(BOutlineTableView* view, BRect cell) override;

    const std::string name;  // without a directory's "/"
    const std::string path;  // on the board
    const bool isDirectory;
};

// The size of an entry, right-aligned.
class SizeTableItem final : public FTableItem {
  public:
    // The number of bytes as the tool prints it, or "--".
    explicit SizeTableItem(const std::string_view& sizeText);

    void DrawItem(BOutlineTableView* view, BRect cell) override;

    const std::string sizeText;

  private:
    // The cache of SizeStringForBounds.
    float fitWidth = 0;
    std::int32_t fitChoice = -1;
};
