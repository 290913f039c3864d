#include "host/csvwriter.h"

#include "common/atomicfile.h"
#include "common/csvfield.h"

QString CsvWriter::field(const QString &text)
{
    return CsvField::text(text);
}

QString CsvWriter::line(const QStringList &fields)
{
    QString out;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out += u',';
        CsvField::append(out, fields[i]);
    }
    return out;
}

bool CsvWriter::writeFile(const QString &fileName, const QList<QStringList> &rows, QString *error)
{
    QByteArray bytes("\xEF\xBB\xBF");
    for (const QStringList &row : rows)
        bytes += (line(row) + QStringLiteral("\r\n")).toUtf8();
    return AtomicFile::write(fileName, bytes, error);
}
