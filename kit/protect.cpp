#include "protect.h"

#include <exception>
#include <utility>

namespace {

std::function<void(const std::string&)> errorHandler;

}  // namespace

void Protect(const std::function<void()>& call)
{
    if (!errorHandler) {
        return call();
    }
    try {
        call();
    } catch (const std::exception& error) {
        errorHandler(error.what());
    } catch (...) {
        errorHandler("something that is no std::exception was thrown");
    }
}

void SetErrorHandler(std::function<void(const std::string&)> handler)
{
    errorHandler = std::move(handler);
}
