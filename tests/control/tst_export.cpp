// The comma-separated export as a spreadsheet reader sees it: files are read back with Python's
// csv module, an independent reader, rather than by our own parser.

#include "views/gridexporter.h"
#include "views/outlinegrid.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// Reads a CSV file with Python's csv module (UTF-8, byte-order mark dropped) and returns its
/// rows, or an empty list with a test failure when Python is unavailable.
QList<QStringList> readWithPython(const QString &path, QByteArray *bomSeen = nullptr)
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
    if (bomSeen)
        *bomSeen = doc.value("bom").toBool() ? "yes" : "no";
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
    static const QStringList guarded = {"=", "+", "-", "@"};
    for (const QString &g : guarded) {
        if (text.startsWith(g)) {
            bool number = false;
            text.toDouble(&number);
            return number ? text : QStringLiteral("'") + text;
        }
    }
    return text;
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
    g.setText(0, 2, "Points");
    g.setText(1, 0, "Business Units");
    g.setText(1, 1, "Open");
    g.setText(1, 2, "Late");
    g.setText(1, 3, "Pts/Hour");
    const QList<QStringList> data = {
        {"All units", "12", "3", "1.5"},
        {"North, East & West", "-12", "-0.5", "0"},
        {"The \"Main\" Depot", "", "7", "+3"},
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
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath("points.csv");
    QString error;
    ASSERT_TRUE(GridExporter::save(g, path, &error)) << error.toStdString();

    QByteArray bom;
    const QList<QStringList> rows = readWithPython(path, &bom);
    EXPECT_EQ(bom, "yes");
    ASSERT_EQ(rows.size(), g.rowCount());
    for (int r = 0; r < g.rowCount(); ++r) {
        ASSERT_EQ(rows[r].size(), g.colCount()) << "row " << r;
        for (int c = 0; c < g.colCount(); ++c)
            EXPECT_EQ(rows[r][c], expectedCell(g.text(r, c)))
                << "row " << r << " col " << c << ": " << g.text(r, c).toStdString();
    }
}

TEST(GridExport, ReplacesAnExistingFileAndReportsAnUnwritableOne)
{
    OutlineGrid g;
    g.setColCount(1);
    g.setRowCount(1);
    g.setText(0, 0, "new");
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath("grid.csv");
    {
        QFile old(path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old contents that are longer than the new ones\r\n");
    }
    ASSERT_TRUE(GridExporter::save(g, path));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("\xEF\xBB\xBFnew\r\n"));

    QString error;
    EXPECT_FALSE(GridExporter::save(g, dir.filePath("no/such/folder/grid.csv"), &error));
    EXPECT_FALSE(error.isEmpty());
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
