#include "editor_host.h"

#include "pop_up_menu.h"

#include <QScopeGuard>

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

// The host's message codes.
constexpr int kLoad = 1;
constexpr int kRegister = 2;
constexpr int kPopUpRequested = 101;
constexpr int kCommand = 103;
constexpr int kReadSettings = 104;

constexpr std::uint32_t kPlainText = 0;

// There is one target at a time, so its handle never differs.
constexpr std::uint32_t kOnlyTarget = 1;

std::uint32_t LanguageOf(const EntryRef& ref)
{
    const std::string_view name = ref.name();
    return name.ends_with(".py") || name.ends_with(".pyw") ? kPythonLanguage : kPlainText;
}

}  // namespace

EditorHost::EditorHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
                       QWidget* widget)
    : plugin_(plugin), runtime_(runtime), worksheet_(std::move(worksheet)), hostWindow_(widget)
{
    window = &hostWindow_;
    bundle = plugin.bundle();
}

std::expected<void, std::string> EditorHost::Start()
{
    if (const auto reply = plugin_.Main(kLoad, this); reply != 1) {
        return std::unexpected("the plug-in does not take this editor on: it answers " +
                               std::to_string(reply));
    }
    plugin_.Main(kRegister, this);
    plugin_.Main(kReadSettings, this);
    return {};
}

bool EditorHost::Perform(const std::string& command)
{
    commandName = command.c_str();
    const bool known = plugin_.Main(kCommand, this) == 2;
    commandName = nullptr;
    return known;
}

bool EditorHost::PerformFromMenu(const std::string& label)
{
    bool known = false;
    const auto reset = qScopeGuard([] { SetPopUpChooser({}); });
    SetPopUpChooser([&](const BMenu& menu) -> const BMenuItem* {
        const auto& items = menu.Items();
        const auto found =
            std::ranges::find_if(items, [&](const auto& item) { return item->Label() == label; });
        known = found != items.end();
        return known ? found->get() : nullptr;
    });
    plugin_.Main(kPopUpRequested, this);
    return known;
}

bool EditorHost::HasRunnable() const
{
    return LanguageOf(document_) == kPythonLanguage || LanguageOf(target_) == kPythonLanguage;
}

// Without windows there are no controls and no settings to keep.
void EditorHost::AddButton(const std::string& /*name*/, void* /*pluginBundle*/) {}

BRect EditorHost::ButtonFrame()
{
    return {};
}

void EditorHost::RegisterSettingsKey(const std::string& /*key*/) {}

void EditorHost::RegisterCommand(const std::string& /*name*/, const std::string& /*description*/) {}

void EditorHost::WriteSettings(const char* /*format*/, ...) {}

EntryRef EditorHost::DocumentRef()
{
    return document_;
}

bool EditorHost::HasCurrentTarget()
{
    return !target_.path().empty();
}

bool EditorHost::HasProjectTarget()
{
    return false;
}

std::uint32_t EditorHost::DocumentLanguage()
{
    return LanguageOf(document_);
}

std::pair<std::uint32_t, std::uint32_t> EditorHost::CommandShortcut(const std::string& /*name*/)
{
    return {0, 0};
}

PluginInterface::Rebinder EditorHost::MakeRebinder(std::int32_t /*kind*/)
{
    return [this, &queue = runtime_.queue()](const PluginWork& work) {
        queue.Post([this, work] { work(this); });
    };
}

void EditorHost::InsertInWorksheet(const std::string& text, const std::string& /*second*/,
                                   std::int32_t /*third*/, std::int32_t /*fourth*/,
                                   std::int32_t /*fifth*/)
{
    worksheet_(text);
}

std::uint32_t EditorHost::TargetLanguage(std::uint32_t /*target*/)
{
    return LanguageOf(target_);
}

EntryRef EditorHost::TargetRef(std::uint32_t /*target*/)
{
    return target_;
}

std::uint32_t EditorHost::CurrentTarget()
{
    return kOnlyTarget;
}
