// The comma-separated export as a spreadsheet reader sees it: files are read back with Python's
// csv module, an independent reader, rather than by our own parser.

#include "views/gridexporter.h"
#include "views/outlinegrid.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// Reads a CSV file with Python's csv module (UTF-8, byte-order mark dropped): its rows, and
/// whether the file began with the byte-order mark.
QList<QStringList> readWithPython(const QString &path, bool &bomSeen)
{
    const char *script = R"(
import csv, json, sys
with open(sys.argv[1], 'rb') as f:
    head = f.read(3)
with open(sys.argv[1], newline='', encoding='utf-8-sig') as f:
    rows = list(csv.reader(f))
json.dump({'bom': head == b'\xef\xbb\xbf', 'rows': rows}, sys.stdout)
)";
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"), QString::fromLatin1(script), path});
    if (!python.waitForFinished(60000) || python.exitCode() != 0) {
        ADD_FAILURE() << "python3 failed: " << python.readAllStandardError().toStdString();
        return {};
    }
    const QJsonObject doc = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    bomSeen = doc.value("bom").toBool();
    QList<QStringList> rows;
    for (const QJsonValue &row : doc.value("rows").toArray()) {
        QStringList cells;
        for (const QJsonValue &cell : row.toArray())
            cells.append(cell.toString());
        rows.append(cells);
    }
    return rows;
}

/// What a reader gets back for a cell: the text itself, or with the apostrophe that keeps a
/// spreadsheet from running it as a formula.
QString expectedCell(const QString &text)
{
    bool number = false;
    text.toDouble(&number);
    const bool guarded = !text.isEmpty() && QStringLiteral("=+-@").contains(text[0]) && !number;
    return guarded ? QStringLiteral("'") + text : text;
}

} // namespace

TEST(GridExport, PythonReadsBackEveryCellOfEveryRow)
{
    // A hierarchy grid as the points view holds it: two header rows, the outline column first.
    OutlineGrid g;
    g.setColCount(4);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setText(0, 1, "Points");
    g.setText(1, 0, "Business Units");
    const QList<QStringList> data = {
        {"North, East & West", "-12", "-0.5", "+3"},
        {"The \"Main\" Depot", "", "7", "1.5"},
        {"Two\nlines", "a\r\nb", "", ""},
        {"São João – Técnicos", "Ñandú", "Øst", "日本"},
        {"=HYPERLINK(\"x\")", "+A1", "@SUM(1)", "-x"},
        {"", "", "", ""},
    };
    for (const QStringList &cells : data) {
        const int row = g.addNodeRow(1);
        for (int c = 0; c < cells.size(); ++c)
            g.setText(row, c, cells[c]);
    }
    g.setCollapsed(2, true); // collapsed rows are exported all the same

    QTemporaryDir dir;
    const QString path = dir.filePath("points.csv");
    QString error;
    ASSERT_TRUE(GridExporter::save(g, path, &error)) << error.toStdString();

    bool bom = false;
    const QList<QStringList> rows = readWithPython(path, bom);
    EXPECT_TRUE(bom);
    ASSERT_EQ(rows.size(), g.rowCount());
    for (int r = 0; r < g.rowCount(); ++r) {
        ASSERT_EQ(rows[r].size(), g.colCount()) << "row " << r;
        for (int c = 0; c < g.colCount(); ++c)
            EXPECT_EQ(rows[r][c], expectedCell(g.text(r, c)))
                << "row " << r << " col " << c << ": " << g.text(r, c).toStdString();
    }
}

TEST(GridExport, FolderOfAPath)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {"/home/ana/reports/grid.csv", "/home/ana/reports"},
        {"C:\\Reports\\grid.csv", "C:\\Reports"},
        {"C:/Reports/grid.csv", "C:/Reports"},
        {"/grid.csv", "/"},
        {"grid.csv", ""},
        {"", ""},
    };
    for (const auto &[path, folder] : cases)
        EXPECT_EQ(GridExporter::folderOf(path), folder) << path.toStdString();
}
