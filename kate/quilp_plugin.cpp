#include "quilp_plugin.h"

#include "kate_host.h"
#include "kate_window.h"

#include <KPluginFactory>

#include <QTimer>

K_PLUGIN_FACTORY_WITH_JSON(QuilpPluginFactory, "katequilpplugin.json",
                           registerPlugin<QuilpPlugin>();)

QuilpPlugin::QuilpPlugin(QObject* parent, const QVariantList& /*arguments*/)
    : KTextEditor::Plugin(parent)
{
    const auto installation = Installation::Find();
    auto module = PluginModule::Load(installation.module);
    if (!module) {
        error_ = module.error();
        return;
    }
    host_ = std::make_unique<KateHost>(std::move(*module), installation);
    if (const auto started = host_->Start(); !started) {
        error_ = started.error();
        host_.reset();
    }
}

QuilpPlugin::~QuilpPlugin() = default;

QObject* QuilpPlugin::createView(KTextEditor::MainWindow* mainWindow)
{
    if (host_) {
        return new KateWindow(*host_, *this, *mainWindow);
    }
    mainWindow->showMessage({{"text", tr("MicroPython: %1").arg(QString::fromStdString(error_))},
                             {"type", "Error"},
                             {"category", "MicroPython"}});
    return new QObject(mainWindow);
}

#include "quilp_plugin.moc"
