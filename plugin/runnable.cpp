#include "runnable.h"

namespace {

bool HasTarget(PluginInterface* pi)
{
    return pi->HasProjectTarget() || pi->HasCurrentTarget();
}

}  // namespace

bool IsPythonSource(PluginInterface* pi)
{
    return pi->DocumentLanguage() == kPythonLanguage;
}

bool IsDocumentOrTargetRunnable(PluginInterface* pi)
{
    if (IsPythonSource(pi)) {
        return true;
    }
    return HasTarget(pi) && pi->TargetLanguage(pi->CurrentTarget()) == kPythonLanguage;
}

EntryRef RunnableDocumentOrTargeRef(PluginInterface* pi)
{
    if (IsPythonSource(pi)) {
        return pi->DocumentRef();
    }
    return HasTarget(pi) ? pi->TargetRef(pi->CurrentTarget()) : EntryRef();
}
