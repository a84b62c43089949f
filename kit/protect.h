#pragma once

#include <functional>
#include <string>

// Calls into code of a plug-in. What it throws is told to the handler, as a sentence; without a
// handler it is thrown on. Used on the user-interface thread.
void Protect(const std::function<void()>& call);

// Empty for none.
void SetErrorHandler(std::function<void(const std::string& error)> handler);
