#include "views/gridexporter.h"

#include "views/outlinegrid.h"

#include <QSaveFile>
#include <algorithm>

QByteArray GridExporter::bytes(const OutlineGrid &grid)
{
    return QByteArray(Bom) + grid.commaText();
}

bool GridExporter::save(const OutlineGrid &grid, const QString &path, QString *error)
{
    // QSaveFile: a failed write leaves an existing file as it was instead of half overwritten.
    QSaveFile file(path);
    const QByteArray data = bytes(grid);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit())
        return true;
    if (error)
        *error = file.errorString();
    return false;
}

QString GridExporter::folderOf(const QString &path)
{
    const qsizetype cut = std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
    if (cut < 0)
        return {};
    if (cut == 0)
        return path.left(1);
    return path.left(cut);
}
