#include "editor_host.h"

#include "plugin_settings.h"
#include "pop_up_menu.h"
#include "protect.h"
#include "rebinder.h"
#include "shortcuts.h"

#include <QScopeGuard>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

// The host's message codes.
constexpr int kLoad = 1;
constexpr int kRegister = 2;
constexpr int kPressControl = 100;
constexpr int kOpenPopUp = 101;
constexpr int kCommand = 103;
constexpr int kReadSettings = 104;
constexpr int kOfferControls = 307;
constexpr int kWriteSettings = 400;

constexpr std::uint32_t kPlainText = 0;

// The target that would run now is the only one the plug-in can ask for, so its handle never
// differs.
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

// 0, as for a message that is not known, when the plug-in throws.
std::int32_t EditorHost::Send(int message)
{
    std::int32_t reply = 0;
    Protect([&] { reply = plugin_.Main(message, this); });
    return reply;
}

std::expected<void, std::string> EditorHost::Start()
{
    if (const auto reply = Send(kLoad); reply != 1) {
        return std::unexpected("the plug-in does not take this editor on: it answers " +
                               std::to_string(reply));
    }
    Send(kRegister);
    ReadSettings();
    return {};
}

void EditorHost::ReadSettings()
{
    for (const auto& key : settingsKeys_) {
        const auto* words = settings_ != nullptr ? settings_->Words(key) : nullptr;
        std::vector<const char*> pointers;
        if (words != nullptr) {
            for (const auto& word : *words) {
                pointers.push_back(word.c_str());
            }
        }
        pointers.push_back(nullptr);
        settingsArgv = words != nullptr ? pointers.data() : nullptr;
        Send(kReadSettings);
        settingsArgv = nullptr;
    }
}

bool EditorHost::Perform(const std::string& command)
{
    commandName = command.c_str();
    const bool known = Send(kCommand) == 2;
    commandName = nullptr;
    return known;
}

std::vector<std::string> EditorHost::OfferedControls()
{
    offered_.clear();
    Send(kOfferControls);
    return std::exchange(offered_, {});
}

void EditorHost::PressControl()
{
    Send(kPressControl);
}

void EditorHost::OpenPopUp(BRect control, std::function<bool(const std::string& label)> mayPerform)
{
    control_ = control;
    const auto reset = qScopeGuard([] { SetPopUpGuard({}); });
    SetPopUpGuard(std::move(mayPerform));
    Send(kOpenPopUp);
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
    bool performed = false;  // And did not throw.
    Protect([&] {
        plugin_.Main(kOpenPopUp, this);
        performed = known;
    });
    return performed;
}

std::expected<void, std::string> EditorHost::SaveSettings()
{
    writtenSettings_.clear();
    Send(kWriteSettings);
    if (settings_ == nullptr) {
        return {};
    }
    settings_->Replace(std::exchange(writtenSettings_, {}));
    return settings_->Save();
}

const EntryRef& EditorHost::RunningTarget() const
{
    return target_.path().empty() ? projectTarget_ : target_;
}

bool EditorHost::HasRunnable() const
{
    return LanguageOf(document_) == kPythonLanguage ||
           LanguageOf(RunningTarget()) == kPythonLanguage;
}

void EditorHost::AddButton(const std::string& name, void* /*pluginBundle*/)
{
    offered_.push_back(name);
}

BRect EditorHost::ButtonFrame()
{
    return control_;
}

void EditorHost::RegisterSettingsKey(const std::string& key)
{
    settingsKeys_.push_back(key);
    if (settings_ != nullptr) {
        settings_->RegisterKey(key);
    }
}

void EditorHost::RegisterCommand(const std::string& name, const std::string& description)
{
    commands_.push_back({name, description});
}

void EditorHost::WriteSettings(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length >= 0) {
        writtenSettings_.append(text, static_cast<std::size_t>(length));
        std::free(text);
    }
}

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
    return !projectTarget_.path().empty();
}

std::uint32_t EditorHost::DocumentLanguage()
{
    return LanguageOf(document_);
}

std::pair<std::uint32_t, std::uint32_t> EditorHost::CommandShortcut(const std::string& name)
{
    return shortcuts_ != nullptr ? shortcuts_->KeyAndModifiers(name)
                                 : std::pair<std::uint32_t, std::uint32_t>(0, 0);
}

PluginInterface::Rebinder EditorHost::MakeRebinder(std::int32_t /*kind*/)
{
    return MakeRebinderFor(*this);
}

void EditorHost::InsertInWorksheet(const std::string& text, const std::string& /*second*/,
                                   std::int32_t /*third*/, std::int32_t /*fourth*/,
                                   std::int32_t /*fifth*/)
{
    worksheet_(text);
}

std::uint32_t EditorHost::TargetLanguage(std::uint32_t /*target*/)
{
    return LanguageOf(RunningTarget());
}

EntryRef EditorHost::TargetRef(std::uint32_t /*target*/)
{
    return RunningTarget();
}

std::uint32_t EditorHost::CurrentTarget()
{
    return kOnlyTarget;
}
