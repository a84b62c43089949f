#include "plugin_host.h"

#include "Menu.h"
#include "python_file.h"
#include "rebinder.h"
#include "settings_store.h"

#include <QScopeGuard>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::uint32_t kPlainText = 0;

// The plug-in can request only the target that would run now, so one handle is sufficient.
constexpr std::uint32_t kOnlyTarget = 1;

std::uint32_t LanguageOf(const EntryRef& ref)
{
    return IsPythonFile(ref.name()) ? kPythonLanguage : kPlainText;
}

}  // namespace

PluginHost::PluginHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
                       QWidget* widget)
    : plugin_(plugin), runtime_(runtime), worksheet_(std::move(worksheet))
{
    SetWindow(widget);
    bundle = plugin.bundle();
}

void PluginHost::SetWindow(QWidget* widget)
{
    hostWindow_ = std::make_unique<HostWindow>(widget);
    window = hostWindow_.get();
}

// Returns 0, as for an unknown message, if the plug-in throws an exception.
std::int32_t PluginHost::Send(int message)
{
    std::int32_t reply = 0;
    Runtime::Protect([&] { reply = plugin_.Main(message, this); });
    return reply;
}

void PluginHost::SetDocument(std::string path)
{
    const bool isPython = LanguageOf(EntryRef(path)) == kPythonLanguage;
    SetDocument(std::move(path), isPython);
}

void PluginHost::SetDocument(std::string path, bool isPython)
{
    document_ = EntryRef(std::move(path));
    isPython_ = isPython;
}

std::expected<void, std::string> PluginHost::Start()
{
    if (const auto reply = Send(kLoad); reply != 1) {
        return std::unexpected("the plug-in rejected this host: it returned " +
                               std::to_string(reply));
    }
    Send(kRegister);
    ReadSettings();
    return {};
}

void PluginHost::ReadSettings()
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

bool PluginHost::Perform(const std::string& command)
{
    commandName = command.c_str();
    const bool known = Send(kCommand) == 2;
    commandName = nullptr;
    return known;
}

bool PluginHost::Perform(const PluginCommand& command)
{
    return command.name.empty() ? PerformFromMenu(std::string(command.menuLabel))
                                : Perform(std::string(command.name));
}

std::vector<std::string> PluginHost::OfferedControls()
{
    offered_.clear();
    Send(kOfferButton);
    return std::exchange(offered_, {});
}

void PluginHost::PressControl()
{
    Send(kButtonPressed);
}

void PluginHost::OpenPopUp(BRect control, std::function<bool(const std::string& label)> mayPerform)
{
    control_ = control;
    const auto reset = qScopeGuard([this] { runtime_.handlers.mayPerform = {}; });
    runtime_.handlers.mayPerform = std::move(mayPerform);
    Send(kPopUpRequested);
}

bool PluginHost::PerformFromMenu(const std::string& label)
{
    bool known = false;
    const auto reset = qScopeGuard([this] { runtime_.handlers.choosePopUpItem = {}; });
    runtime_.handlers.choosePopUpItem = [&](const BMenu& menu) -> const BMenuItem* {
        const auto& items = menu.Items();
        const auto found =
            std::ranges::find_if(items, [&](const auto& item) { return item->Label() == label; });
        known = found != items.end();
        return known ? found->get() : nullptr;
    };
    bool performed = false;  // Set only if no exception is thrown.
    Runtime::Protect([&] {
        plugin_.Main(kPopUpRequested, this);
        performed = known;
    });
    return performed;
}

std::expected<void, std::string> PluginHost::SaveSettings()
{
    writtenSettings_.clear();
    Send(kSaveSettings);
    if (settings_ == nullptr) {
        return {};
    }
    settings_->Replace(std::exchange(writtenSettings_, {}));
    return settings_->Save();
}

const EntryRef& PluginHost::RunningTarget() const
{
    return target_.path().empty() ? projectTarget_ : target_;
}

const EntryRef& PluginHost::Runnable() const
{
    static const EntryRef kNone;
    if (isPython_) {
        return document_;
    }
    return LanguageOf(RunningTarget()) == kPythonLanguage ? RunningTarget() : kNone;
}

void PluginHost::AddButton(const std::string& name, void* /*pluginBundle*/)
{
    offered_.push_back(name);
}

BRect PluginHost::ButtonFrame()
{
    return control_;
}

void PluginHost::RegisterSettingsKey(const std::string& key)
{
    settingsKeys_.push_back(key);
    if (settings_ != nullptr) {
        settings_->RegisterKey(key);
    }
}

void PluginHost::RegisterCommand(const std::string& name, const std::string& description)
{
    commands_.push_back({name, description});
}

void PluginHost::WriteSettings(const char* format, ...)
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

EntryRef PluginHost::DocumentRef()
{
    return paths_.Escape(document_);
}

bool PluginHost::HasCurrentTarget()
{
    return !target_.path().empty();
}

bool PluginHost::HasProjectTarget()
{
    return !projectTarget_.path().empty();
}

std::uint32_t PluginHost::DocumentLanguage()
{
    return isPython_ ? kPythonLanguage : kPlainText;
}

std::pair<std::uint32_t, std::uint32_t> PluginHost::CommandShortcut(const std::string& name)
{
    return findShortcut_ ? findShortcut_(name) : std::pair<std::uint32_t, std::uint32_t>(0, 0);
}

PluginInterface::Rebinder PluginHost::MakeRebinder(std::int32_t /*kind*/)
{
    return MakeRebinderFor(*this);
}

void PluginHost::InsertInWorksheet(const std::string& text, const std::string& /*second*/,
                                   std::int32_t /*third*/, std::int32_t /*fourth*/,
                                   std::int32_t /*fifth*/)
{
    worksheet_(paths_.Restore(text));
}

std::uint32_t PluginHost::TargetLanguage(std::uint32_t /*target*/)
{
    return LanguageOf(RunningTarget());
}

EntryRef PluginHost::TargetRef(std::uint32_t /*target*/)
{
    return paths_.Escape(RunningTarget());
}

std::uint32_t PluginHost::CurrentTarget()
{
    return kOnlyTarget;
}
