#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class BMessage;

// An object that messages can be delivered to. [ui]
class BHandler {
  public:
    BHandler();
    BHandler(const BHandler&) = delete;
    BHandler& operator=(const BHandler&) = delete;
    virtual ~BHandler();
    virtual void MessageReceived(BMessage* message);
    virtual void Notice(BMessage* message);
};

// An object that the framework keeps alive while it runs. Owned through std::shared_ptr: the
// framework holds one while the looper runs and another during each call into it, so the looper may
// quit in any of its own callables. [ui]
class BLooper : public BHandler, public std::enable_shared_from_this<BLooper> {
  public:
    void MessageReceived(BMessage* message) override;

    // Called when the user requests to close the looper. Returns false to refuse.
    virtual bool QuitRequested();

    // Stops the looper without calling QuitRequested. It is destroyed when the last call into it
    // returns.
    virtual void Quit();

    // Creates a looper in two phases. The constructor receives a vector to which it adds
    // initialisers; they run in order once the looper is owned, so they can take a weak pointer to
    // it. An empty initialiser throws std::bad_function_call.
    template <class T, class... Arguments>
    static std::shared_ptr<T> MakeInstance(Arguments&&... arguments)
    {
        std::vector<std::function<void()>> initialisers;
        auto looper = std::make_shared<T>(initialisers, std::forward<Arguments>(arguments)...);
        for (const auto& initialise : initialisers) {
            initialise();
        }
        return looper;
    }
};

// A weak pointer to a looper, with the looper's own type, for callables that may outlive it. Throws
// std::bad_weak_ptr if the looper is not owned, as in its constructor and destructor.
template <class T>
std::weak_ptr<T> weak_from_this(T* looper)
{
    return std::static_pointer_cast<T>(looper->BLooper::shared_from_this());
}

// Identifies a looper to which work is delivered, without keeping it alive. A copyable value.
class BMessenger {
  public:
    // The looper is `looper` or, if that is null, the handler, which must then be a looper. Throws
    // std::bad_weak_ptr if the looper is not owned. [ui]
    explicit BMessenger(BHandler* handler, BLooper* looper = nullptr);

    // The looper; null if it no longer exists. [any]
    std::shared_ptr<BLooper> Lock() const { return looper_.lock(); }

  private:
    std::weak_ptr<BLooper> looper_;
};
