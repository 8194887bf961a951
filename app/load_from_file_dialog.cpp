#include "app/load_from_file_dialog.h"

#include <QFileDialog>
#include <QFileIconProvider>
#include <QMimeDatabase>

namespace {

class NameOnlyIconProvider : public QFileIconProvider {
public:
    QIcon icon(const QFileInfo &info) const override { return QFileIconProvider::icon(info.isDir() ? Folder : File); }
    QString type(const QFileInfo &info) const override {
        if (!info.isFile()) return QFileIconProvider::type(info);
        const QMimeType mime = QMimeDatabase().mimeTypeForFile(info.fileName(), QMimeDatabase::MatchExtension);
        return mime.comment().isEmpty() ? mime.name() : mime.comment();
    }
    using QFileIconProvider::icon;
};

}  // namespace

QString choose_file_to_load(QWidget *parent, const QString &title, const QString &startFolder) {
    static NameOnlyIconProvider icons;
    QFileDialog dialog(parent, title, startFolder);
    // A native dialog guesses types in its own way.
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontUseCustomDirectoryIcons);
    dialog.setIconProvider(&icons);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted) return QString();
    return dialog.selectedFiles().value(0);
}
