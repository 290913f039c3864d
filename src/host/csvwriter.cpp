#include "host/csvwriter.h"

#include <QSaveFile>

QString CsvWriter::field(const QString &text)
{
    const bool needsQuotes =
        text.contains(u',') || text.contains(u'"') || text.contains(u'\r') || text.contains(u'\n');
    if (!needsQuotes)
        return text;
    QString quoted = text;
    quoted.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString CsvWriter::line(const QStringList &fields)
{
    QStringList out;
    out.reserve(fields.size());
    for (const QString &f : fields)
        out.append(field(f));
    return out.join(u',');
}

bool CsvWriter::writeFile(const QString &fileName, const QList<QStringList> &rows, QString *error)
{
    // QSaveFile: a failed or interrupted export leaves an existing file as it was.
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    static const QByteArray byteOrderMark("\xEF\xBB\xBF");
    if (file.write(byteOrderMark) != byteOrderMark.size()) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    for (const QStringList &row : rows) {
        const QByteArray bytes = (line(row) + QStringLiteral("\r\n")).toUtf8();
        if (file.write(bytes) != bytes.size()) {
            if (error)
                *error = file.errorString();
            file.cancelWriting();
            return false;
        }
    }
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}
