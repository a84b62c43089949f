#include "Looper.h"

#include "runtime.h"

BHandler::BHandler() = default;

BHandler::~BHandler() = default;

void BHandler::MessageReceived(BMessage* /*message*/) {}

void BHandler::Notice(BMessage* /*message*/) {}

void BLooper::MessageReceived(BMessage* message)
{
    BHandler::MessageReceived(message);
}

bool BLooper::QuitRequested()
{
    return true;
}

void BLooper::Quit()
{
    Runtime::Current().Release(this);
}

BMessenger::BMessenger(BHandler* handler, BLooper* looper)
    : looper_((looper != nullptr ? looper : dynamic_cast<BLooper*>(handler))->shared_from_this())
{
}
