// A window that drags a file, as a file manager would: pressing the left button in it starts a
// drag of the file's URL (text/uri-list) that any drop target can take. The end-to-end tests move
// the real pointer from here to the editor's drop target.
//
//   drag_source FILE
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <cstdio>

namespace {

class Source final : public QLabel
{
public:
    explicit Source(const QUrl &file) : QLabel(file.fileName()), m_file(file)
    {
        setAlignment(Qt::AlignCenter);
        setWindowTitle(QStringLiteral("drag source"));
        resize(240, 160);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton)
            return;
        auto *data = new QMimeData;
        data->setUrls({m_file});
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        const Qt::DropAction action = drag->exec(Qt::CopyAction);
        std::printf("drag ended: %s\n", action == Qt::CopyAction ? "copied" : "refused");
        std::fflush(stdout);
    }

private:
    QUrl m_file;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc != 2)
        return 2;
    Source source(QUrl::fromLocalFile(QString::fromLocal8Bit(argv[1])));
    source.move(20, 20);
    source.show();
    std::printf("ready\n");
    std::fflush(stdout);
    return app.exec();
}
