// drag_source FILE...: shows a small window from which the files can be dragged.

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QUrl>

namespace {

class Source final : public QLabel {
  public:
    explicit Source(QList<QUrl> files) : QLabel("drag"), files_(std::move(files))
    {
        setGeometry(0, 0, 80, 60);
    }

  protected:
    void mousePressEvent(QMouseEvent* /*event*/) override
    {
        auto* const mime = new QMimeData;
        mime->setUrls(files_);
        auto* const drag = new QDrag(this);
        drag->setMimeData(mime);
        drag->exec(Qt::CopyAction);
    }

  private:
    QList<QUrl> files_;
};

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QList<QUrl> files;
    for (int i = 1; i < argc; ++i) {
        files.append(QUrl::fromLocalFile(argv[i]));
    }
    Source source(files);
    source.show();
    return QApplication::exec();
}
