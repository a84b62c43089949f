#pragma once

#include "Geometry.h"
#include "Looper.h"
#include "View.h"

#include <functional>
#include <memory>
#include <vector>

// An object that others can observe. [ui]
class BNotifier {
  public:
    virtual ~BNotifier();
};

// A window, with the views of its description. Once the window has been shown, the framework keeps
// it alive until it quits. [ui]
class BWindow : public BLooper, public BNotifier {
  public:
    struct Native;  // Defined in the framework.

    // Loads the window's description from the file "DESCRIPTION.ui" in the resources of the bundle
    // with the handle `bundle`. `name` identifies the window. The initialisers are those of
    // BLooper::MakeInstance. Throws std::runtime_error, with a sentence for the user, if the
    // description cannot be read or contains a view of an unknown class.
    BWindow(std::vector<std::function<void()>>& initialisers, const char* description,
            const char* name, void* bundle);
    ~BWindow() override;

    void Show();
    // Brings the window to the front and gives it the keyboard focus, if `active` is true.
    void Activate(bool active);
    // Removes the window from the screen immediately.
    void Quit() override;

    // The frame in screen coordinates, including the window's decoration.
    BRect Frame() const;
    void SetFrame(BRect frame);

    // Converts from the window's coordinates to screen coordinates.
    BPoint ConvertToScreen(BPoint point) const;

    int CountChildren() const;
    BView* ChildAt(int index) const;
    // The view with this tag; null if there is none.
    BView* FindViewByTagDetails(int tag) const;

    // The first view of this class or a derived one, searched among the direct children and then,
    // in the same way, within each child. Null if there is none.
    template <class View>
    View* FindFirst() const
    {
        return FindFirstIn<View>(*this);
    }

    // The view with this tag; null if there is none, it is of another class, or the tag is 0.
    template <class View>
    View* FindViewByTag(int tag) const
    {
        return tag == 0 ? nullptr : dynamic_cast<View*>(FindViewByTagDetails(tag));
    }

    // For the framework only.
    Native& native() const { return *native_; }

  protected:
    // For the framework only: a window that it did not create.
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
