// Another program's window, from which files can be dragged. It prints what became of each drag: "copy" or "refused".
// usage: drag-source FILE...

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

#include <cstdio>

namespace {

class DragSource : public QWidget {
public:
    explicit DragSource(const QList<QUrl>& files) : files_(files) {
        setWindowTitle(QStringLiteral("drag source"));
        setGeometry(0, 24, 120, 80);
    }

protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* content = new QMimeData;
        content->setUrls(files_);
        auto* drag = new QDrag(this); // deletes itself
        drag->setMimeData(content);
        const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction);
        std::puts(action == Qt::CopyAction ? "copy" : action == Qt::IgnoreAction ? "refused" : "something else");
        std::fflush(stdout);
    }

private:
    QList<QUrl> files_;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QList<QUrl> files;
    for (const QString& path : QApplication::arguments().mid(1)) {
        files.append(QUrl::fromLocalFile(path));
    }
    DragSource source(files);
    source.show();
    return QApplication::exec();
}
