#include "session/widgets/QuietFileIcons.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QMimeDatabase>

namespace knjige
{
namespace
{

class QuietIconProvider final : public QFileIconProvider
{
public:
    QIcon icon(IconType type) const override { return QFileIconProvider::icon(type); }
    // A look at the file's kind (stat), never its contents.
    QIcon icon(const QFileInfo& info) const override
    {
        if (info.isRoot())
            return QFileIconProvider::icon(Drive);
        return QFileIconProvider::icon(info.isDir() ? Folder : File);
    }
    QString type(const QFileInfo& info) const override
    {
        if (info.isDir())
            return QStringLiteral("Mapa");
        const QMimeType mime = QMimeDatabase().mimeTypeForFile(info.fileName(), QMimeDatabase::MatchExtension);
        return mime.isDefault() ? QStringLiteral("Datoteka") : mime.comment();
    }
};

} // namespace

QAbstractFileIconProvider& quietFileIcons()
{
    static QuietIconProvider provider;
    return provider;
}

void quietenFileModels(QObject* root)
{
    for (QFileSystemModel* model : root->findChildren<QFileSystemModel*>())
        if (model->iconProvider() != &quietFileIcons())
            model->setIconProvider(&quietFileIcons());
}

QuietFileDialogs::QuietFileDialogs()
{
    qApp->installEventFilter(this);
}

QuietFileDialogs::~QuietFileDialogs()
{
    qApp->removeEventFilter(this);
}

bool QuietFileDialogs::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Polish && qobject_cast<QDialog*>(watched))
        quietenFileModels(watched);
    return false;
}

} // namespace knjige
