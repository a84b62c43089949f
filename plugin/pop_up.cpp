#include "pop_up.h"

#include "Font.h"
#include "Menu.h"
#include "Window.h"
#include "commands.h"
#include "runnable.h"
#include "runner.h"

namespace {

constexpr double kFontSize = 10;
constexpr double kBelowControl = 6;

// The name of the file that a command would act on, unless that is the front document.
std::string Suffix(PluginInterface* pi)
{
    if (IsPythonSource(pi)) {
        return "";
    }
    const std::string name = RunnableDocumentOrTargeRef(pi).name();
    return name.empty() ? "" : " " + name;
}

// Trailing spaces are part of the labels.
void AddItems(PluginInterface* pi, BMenu* menu)
{
    if (IsDocumentOrTargetRunnable(pi)) {
        AddOneMenuItem(
            pi, menu, "Run" + Suffix(pi), [pi] { Run(pi); }, "QuilpRun");
    }
    AddOneMenuItem(
        pi, menu, "Stop " + gRunningCommand, [pi] { Stop(pi); }, "QuilpStop");
    if (IsDocumentOrTargetRunnable(pi)) {
        AddOneMenuItem(
            pi, menu, "Upload" + Suffix(pi) + " as main.py", [pi] { Upload(pi, "main.py"); },
            "QuilpUploadAsMain");
        AddOneMenuItem(
            pi, menu, "Upload " + Suffix(pi), [pi] { Upload(pi, ""); }, "QuilpUpload");
    }
    AddOneMenuItem(
        pi, menu, "List ", [pi] { List(pi); }, "QuilpList");
    AddOneMenuItem(
        pi, menu, "Status ", [pi] { Status(pi); }, "");
    AddOneMenuItem(
        pi, menu, "Add upload command to worksheet ", [pi] { DumpUpload(pi); }, "");
    AddOneMenuItem(
        pi, menu, "Open Device window", [pi] { OpenWindow(pi); }, "");
}

}  // namespace

void AddOneMenuItem(PluginInterface* pi, BMenu* menu,
                    std::string label,  // NOLINT(performance-unnecessary-value-param)
                    const std::function<void()>& action, const std::string& commandName)
{
    auto* const item = new BMenuItem(label, action, 0, 0);
    menu->AddItem(item);
    const auto [key, modifiers] = pi->CommandShortcut(commandName);
    if (key != 0) {
        item->SetShortcut(static_cast<unsigned char>(key & 0xFF), modifiers);
    }
}

void RunPopUp(PluginInterface* pi)
{
    BFont font(*be_plain_font);
    font.SetSize(kFontSize);
    BPopUpMenu menu("QuilpPopUp", false, false);
    menu.SetFont(&font);
    AddItems(pi, &menu);
    const BRect control = pi->ButtonFrame();
    BPoint where = pi->window->ConvertToScreen({control.left, control.bottom});
    where.y += kBelowControl;
    menu.Go(where, false, false, false, nullptr);
}
