#pragma once

#include <KTextEditor/Plugin>

#include <QVariantList>

#include <memory>
#include <string>

class KateHost;

// What Kate loads. If the plug-in's module cannot be used, its views only say why. [ui]
class QuilpPlugin final : public KTextEditor::Plugin {
    Q_OBJECT

  public:
    explicit QuilpPlugin(QObject* parent, const QVariantList& arguments = {});
    ~QuilpPlugin() override;

    QObject* createView(KTextEditor::MainWindow* mainWindow) override;

  private:
    std::unique_ptr<KateHost> host_;  // Null after an error.
    std::string error_;
};
