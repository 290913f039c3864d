// Everything a refresh shows, on random data full of the odd cases (codes that differ only in
// letter case, codes holding "|", empty job-type codes, units missing from the general table or
// listed twice, unknown and case-variant ids in the choice, negative figures and sums past the
// 32-bit range), reduced to one SHA-1 per seed. The digests were taken from the string-keyed
// model and summary that the numbered ones replaced: any change in a row, an order, a figure, a
// colour, a node or an error changes a digest.
#include "common/dlverror.h"
#include "loadedmodel.h"

#include <QCryptographicHash>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace {

class RandomRefresh
{
public:
    /// plain: no negative figure and no class code in two spellings, so that every unit's totals
    /// are plain sums of its classes (the summary then takes the per-class totals another way).
    explicit RandomRefresh(quint32 seed, bool plain = false)
        : m_rng(seed), m_bigFigures(below(8) == 0), m_plain(plain)
    {}

    DLVDataBuilder build()
    {
        // Case variants; "A|B" + "C" and "A" + "B|C" share the row data "A|B|C", "|" + "B" the
        // per-class total's "||B" of class "|B", "" + "C1" the total "|C1".
        static const QStringList typePool{"T1", "t1", "T2", "A|B", "A", "", "B|C", "X", "|"};
        static const QStringList mixedClasses{"C1", "c1", "C2", "|", "B|C", "C", "", "|B", "B"};
        static const QStringList plainClasses{"C1", "C3", "C2", "|", "B|C", "C", "", "|B", "B"};
        const QStringList &classPool = m_plain ? plainClasses : mixedClasses;
        DLVDataBuilder b;
        const int units = 1 + below(30);
        b.unit("#", "All", "#");
        for (int u = 1; u <= units; ++u) {
            const QString parent =
                u == 1 || below(5) == 0 ? QStringLiteral("#") : id(1 + below(u - 1));
            b.unit(id(u), QStringLiteral("Unit %1").arg(u), parent);
            m_ids << id(u);
        }
        for (const QString &code : typePool)
            if (below(3) != 0)
                b.jobType(code, below(4) == 0 ? QString() : QStringLiteral("Type ") + code);
        for (const QString &code : classPool)
            if (below(3) != 0)
                b.jobClass(code, below(4) == 0 ? QString() : QStringLiteral("Class ") + code);
        for (int u = 1; u <= units; ++u) {
            if (below(8) == 0)
                continue; // no general row: the unit is not in the model
            const int repeats = below(10) == 0 ? 2 : 1;
            for (int k = 0; k < repeats; ++k)
                b.general(variant(id(u)), QStringLiteral("Unit %1").arg(u), number(20), number(60),
                          number(60));
        }
        const int details = below(160);
        for (int d = 0; d < details; ++d) {
            const QString unit =
                below(15) == 0 ? QStringLiteral("ZZ") : variant(id(1 + below(units)));
            QStringList figures;
            for (int s = 0; s < 14; ++s)
                figures << figure();
            b.detail(unit, typePool[below(int(typePool.size()))],
                     classPool[below(int(classPool.size()))], figures);
        }
        return b;
    }

    /// A choice of ids: known ones (some in another case), unknown ones and the root.
    QStringList choice()
    {
        QStringList out;
        for (const QString &unit : m_ids)
            if (below(2) == 0)
                out << variant(unit);
        if (below(4) == 0)
            out << QStringLiteral("nobody");
        if (below(6) == 0)
            out << QStringLiteral("#");
        return out;
    }

private:
    int below(int n) { return int(m_rng() % quint32(std::max(n, 1))); }
    static QString id(int u) { return QStringLiteral("U%1").arg(u); }
    QString variant(const QString &unit) { return below(6) == 0 ? unit.toLower() : unit; }
    QString number(int n) { return QString::number(below(n)); }
    QString figure()
    {
        switch (below(60)) {
        case 0:
            if (m_plain)
                return QString::number(below(9));
            return QStringLiteral("-%1").arg(below(9));
        case 1:
            // In one seed of eight: figures that overflow a sum together.
            return m_bigFigures ? QStringLiteral("2000000000") : QString::number(below(40));
        default:
            return QString::number(below(40));
        }
    }

    std::mt19937 m_rng;
    bool m_bigFigures;
    bool m_plain;
    QStringList m_ids;
};

void addGrid(QCryptographicHash &hash, const OutlineGrid &grid)
{
    QString text;
    for (int r = 0; r < grid.rowCount(); ++r) {
        text = QStringLiteral("%1|%2|%3|%4|")
                   .arg(r)
                   .arg(grid.isNode(r))
                   .arg(grid.outlineLevel(r))
                   .arg(grid.rowData(r));
        for (int c = 0; c < grid.colCount(); ++c)
            text += grid.text(r, c) + u'\x1f' + QString::number(grid.isBold(r, c)) + u'\x1f' +
                    grid.backColor(r, c).name() + u'\x1e';
        hash.addData(text.toUtf8());
    }
}

QByteArray digest(quint32 seed, bool plain = false)
{
    RandomRefresh random(seed, plain);
    LoadedModel model(random.build());
    const QStringList summaryChoice = random.choice();
    const QStringList hierarchyChoice = random.choice();
    QCryptographicHash hash(QCryptographicHash::Sha1);
    // A fill that fails (a sum past the range) throws; what it left behind counts as well.
    const auto trapped = [&hash](const std::function<void()> &fill) {
        try {
            fill();
        } catch (const DLVError &e) {
            hash.addData(QStringLiteral("error %1\n").arg(e.number()).toUtf8());
        }
    };
    SummaryFill summary;
    trapped([&] { summary.show(model, summaryChoice); });
    HierarchyFill hierarchy;
    trapped([&] { hierarchy.fill(model, hierarchyChoice); });

    addGrid(hash, summary.grid);
    addGrid(hash, hierarchy.workOrders);
    addGrid(hash, hierarchy.points);
    for (int i = 0; i < PanelValues::FigureCount; ++i)
        hash.addData((summary.panel.text(i) + u'\x1e').toUtf8());
    for (const RecordingReporter::Report &report : model.reporter.reports)
        hash.addData(QStringLiteral("%1 %2 %3\n")
                         .arg(report.number)
                         .arg(report.location, report.description)
                         .toUtf8());
    return hash.result().toHex();
}

} // namespace

TEST(RefreshSnapshots, RandomRefreshesShowWhatTheStringKeyedModelShowed)
{
    const char *const expected[] = {
#include "refreshsnapshots.inc"
    };
    if (qEnvironmentVariableIsSet("DLV_PRINT_SNAPSHOTS")) {
        for (quint32 seed = 0; seed < std::size(expected); ++seed)
            std::printf("\"%s\",\n", digest(seed).constData());
        return;
    }
    for (quint32 seed = 0; seed < std::size(expected); ++seed)
        EXPECT_EQ(digest(seed), QByteArray(expected[seed])) << "seed " << seed;
}

// The same on data whose totals are plain sums (no negative figure, one spelling per class code).
TEST(RefreshSnapshots, RandomPlainRefreshesShowWhatTheStringKeyedModelShowed)
{
    const char *const expected[] = {
#include "refreshsnapshots_plain.inc"
    };
    if (qEnvironmentVariableIsSet("DLV_PRINT_SNAPSHOTS")) {
        for (quint32 seed = 0; seed < std::size(expected); ++seed)
            std::printf("\"%s\",\n", digest(seed, true).constData());
        return;
    }
    for (quint32 seed = 0; seed < std::size(expected); ++seed)
        EXPECT_EQ(digest(seed, true), QByteArray(expected[seed])) << "seed " << seed;
}
