#include "views/gridexporter.h"

#include "common/atomicfile.h"
#include "views/outlinegrid.h"

#include <algorithm>

QByteArray GridExporter::bytes(const OutlineGrid &grid)
{
    return QByteArray(Bom) + grid.commaText();
}

bool GridExporter::save(const OutlineGrid &grid, const QString &path, QString *error)
{
    return AtomicFile::write(path, bytes(grid), error);
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
