#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class BMessage;

// What a message can be delivered to. Used on the user-interface thread.
class BHandler {
  public:
    BHandler();
    BHandler(const BHandler&) = delete;
    BHandler& operator=(const BHandler&) = delete;
    virtual ~BHandler();
    virtual void MessageReceived(BMessage* message);
    virtual void Notice(BMessage* message);
};

// What lives as long as it runs. Owned by std::shared_ptr: while it runs the framework holds one,
// and during each call into it another, so that it may quit in any of its own callables.
class BLooper : public BHandler, public std::enable_shared_from_this<BLooper> {
  public:
    void MessageReceived(BMessage* message) override;

    // Asked before a close that the user wished for. False refuses.
    virtual bool QuitRequested();

    // Ends the looper, without asking. It is destroyed when the last call into it returns.
    virtual void Quit();

    // Makes a looper in two phases. Its constructor gets a vector to put initialisers into; they
    // run in order when the looper is owned, so that they can take a weak pointer to it. An empty
    // one throws std::bad_function_call.
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

// A weak pointer to a looper, by its own type. Throws std::bad_weak_ptr when it is not owned, as in
// its constructor and destructor. Usable for callables that may outlive the looper.
template <class T>
std::weak_ptr<T> weak_from_this(T* looper)
{
    return std::static_pointer_cast<T>(looper->BLooper::shared_from_this());
}

// Names a looper to which work is delivered, without keeping it alive. A copyable value.
class BMessenger {
  public:
    // The looper is `looper`, or else the handler itself, which then must be one. Throws
    // std::bad_weak_ptr when it is not owned.
    explicit BMessenger(BHandler* handler, BLooper* looper = nullptr);

    // The looper, unless it is gone.
    std::shared_ptr<BLooper> Lock() const { return looper_.lock(); }

  private:
    std::weak_ptr<BLooper> looper_;
};
