#pragma once

#include "Bitmap.h"

#include <QIcon>

struct BBitmap::Content {
    QIcon icon;
};
