#include "action_icons.h"

#include "picture_icon.h"

QIcon ActionIcon(Action action)
{
    switch (action) {
        case Action::New: return PictureIcon("document");
        case Action::Open: return PictureIcon("folder");
        case Action::Save: return PictureIcon("save");
        case Action::Run: return PictureIcon("run");
        case Action::Stop: return PictureIcon("stop");
        case Action::Board: return PictureIcon("board");
        case Action::Close: return PictureIcon("close");
    }
    return {};
}
