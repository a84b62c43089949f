#pragma once

#include "Geometry.h"
#include "Looper.h"
#include "View.h"

#include <functional>
#include <memory>
#include <vector>

// What others can watch.
class BNotifier {
  public:
    virtual ~BNotifier();
};

// A window with the views that its description supplies. Used on the user-interface thread. Once it
// was shown the framework keeps it alive until it quits.
class BWindow : public BLooper, public BNotifier {
  public:
    struct Native;  // Completed in the framework.

    // Loads the window's description: the file of this name, with ".ui" at its end, in the
    // resources of the bundle that `bundle` is the handle of. Throws std::runtime_error, with a
    // sentence, when that cannot be read or names a view that is not known. `name` tells the window
    // from others. The initialisers are BLooper::MakeInstance's.
    BWindow(std::vector<std::function<void()>>& initialisers, const char* description,
            const char* name, void* bundle);
    ~BWindow() override;

    void Show();
    // Brings the window to the front and gives it the keyboard.
    void Activate(bool active);
    // Takes it off the screen, at once.
    void Quit() override;

    // In the coordinates of the screen: the corner includes the title bar, the size does not.
    BRect Frame() const;
    void SetFrame(BRect frame);

    // From the window's coordinates to those of the screen.
    BPoint ConvertToScreen(BPoint point) const;

    int CountChildren() const;
    BView* ChildAt(int index) const;
    // The view with this tag; null when there is none.
    BView* FindViewByTagDetails(int tag) const;

    // The first view of exactly this kind or one derived from it: of the direct children, then of
    // each child's own in the same way. Null when there is none.
    template <class View>
    View* FindFirst() const
    {
        return FindFirstIn<View>(*this);
    }

    // The view with this tag; null when there is none, it is of another kind, or the tag is 0.
    template <class View>
    View* FindViewByTag(int tag) const
    {
        return tag == 0 ? nullptr : dynamic_cast<View*>(FindViewByTagDetails(tag));
    }

    // For the framework.
    Native& native() const { return *native_; }

  protected:
    // For the framework: a window that it did not make.
    explicit BWindow(std::unique_ptr<Native> native);

  private:
    template <class View, class Parent>
    static View* FindFirstIn(const Parent& parent)
    {
        for (int i = 0; i < parent.CountChildren(); ++i) {
            if (auto* found = dynamic_cast<View*>(parent.ChildAt(i))) {
                return found;
            }
        }
        for (int i = 0; i < parent.CountChildren(); ++i) {
            if (auto* found = FindFirstIn<View>(*parent.ChildAt(i))) {
                return found;
            }
        }
        return nullptr;
    }

    std::unique_ptr<Native> native_;
};
