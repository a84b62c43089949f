#include "command_paths.h"

#include "command_line.h"

#include <cstddef>

EntryRef CommandPaths::Escape(const EntryRef& ref)
{
    std::string escaped = EscapeWord(ref.path());
    if (escaped != ref.path()) {
        plain_[escaped] = ref.path();
    }
    return {std::move(escaped), ref.name()};
}

std::string CommandPaths::Restore(std::string text) const
{
    for (const auto& [escaped, plain] : plain_) {
        std::size_t at = 0;
        while ((at = text.find(escaped, at)) != std::string::npos) {
            text.replace(at, escaped.size(), plain);
            at += plain.size();
        }
    }
    return text;
}
