// The unit list across refreshes: a refresh that lists the same units keeps the list's items and
// shows the new choice; one that changes a unit rebuilds; the filter and the selection the list
// shows always match the choice, whichever way the refresh went.
#include "control/unitlistpane.h"
#include "model/viewchoice.h"

#include <QGroupBox>
#include <QItemSelectionModel>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

using Items = std::vector<BUSelection::Item>;

Items items(std::initializer_list<std::tuple<const char *, const char *, int>> list)
{
    Items out;
    for (const auto &[id, text, level] : list)
        out.push_back(
            {QStringLiteral("_") + QString::fromLatin1(id), QString::fromLatin1(text), level});
    return out;
}

struct Pane
{
    Pane()
    {
        frame.resize(300, 400);
        list = new QTreeWidget(&frame); // owned by the frame
        list->setObjectName(QStringLiteral("lvBU"));
        pane = std::make_unique<UnitListPane>(&frame, list, choice,
                                              [](const QString &key) { return key; });
    }
    void fill(const Items &units, std::vector<const char *> keep)
    {
        pane->refill(
            [&units](std::vector<BUSelection::Item> &items) {
                const bool same =
                    std::equal(items.begin(), items.end(), units.begin(), units.end(),
                               [](const BUSelection::Item &a, const BUSelection::Item &b) {
                                   return a.key == b.key && a.text == b.text && a.level == b.level;
                               });
                items = units;
                return !same;
            },
            [&keep](const BUSelection::Item &item) {
                const QStringView id = QStringView(item.key).mid(1);
                return std::any_of(keep.begin(), keep.end(),
                                   [id](const char *k) { return id == QLatin1StringView(k); });
            });
    }
    std::vector<QTreeWidgetItem *> widgets() const
    {
        std::vector<QTreeWidgetItem *> out;
        for (QTreeWidgetItemIterator it(list); *it; ++it)
            out.push_back(*it);
        return out;
    }
    // What the list shows: selected and visible flags, and texts, in list order.
    std::string shown() const
    {
        std::string out;
        for (QTreeWidgetItem *w : widgets())
            out += (w->isHidden() ? "-" : "") + w->text(0).toStdString() +
                   (w->isSelected() ? "*" : "") + " ";
        return out;
    }
    std::string chosen() const
    {
        std::string out;
        for (int i = 0; i < choice.unitCount(); ++i)
            out += choice.isChosen(i) ? '1' : '0';
        return out;
    }

    QGroupBox frame;
    QTreeWidget *list = nullptr;
    ViewChoice choice;
    std::unique_ptr<UnitListPane> pane;
};

const Items kUnits = items({{"R", "Region", 0}, {"A", "Alpha", 1}, {"B", "Beta", 1}});

TEST(UnitListPane, RefreshesKeepTheItemsWhenTheUnitsStayAndShowTheNewChoice)
{
    const struct
    {
        const char *name;
        Items units;
        std::vector<const char *> keep;
        bool sameItems;
        const char *shown;
        const char *chosen;
    } steps[] = {
        {"first fill", kUnits, {"R", "B"}, false, "Region* Alpha Beta* ", "101"},
        {"same units, new choice", kUnits, {"A"}, true, "Region Alpha* Beta ", "010"},
        {"same units, all chosen", kUnits, {"R", "A", "B"}, true, "Region* Alpha* Beta* ", "111"},
        {"a description changed",
         items({{"R", "Region", 0}, {"A", "Alpha 2", 1}, {"B", "Beta", 1}}),
         {"B"},
         false,
         "Region Alpha 2 Beta* ",
         "001"},
        {"a unit less",
         items({{"R", "Region", 0}, {"B", "Beta", 1}}),
         {"B"},
         false,
         "Region Beta* ",
         "01"},
    };
    Pane p;
    std::vector<QTreeWidgetItem *> before;
    for (const auto &step : steps) {
        SCOPED_TRACE(step.name);
        p.fill(step.units, step.keep);
        EXPECT_EQ(p.shown(), step.shown);
        EXPECT_EQ(p.chosen(), step.chosen);
        if (step.sameItems) {
            EXPECT_EQ(p.widgets(), before);
        }
        before = p.widgets();
    }
}

TEST(UnitListPane, TheUsersSelectionAndTheFilterHoldAcrossARefreshOfTheSameUnits)
{
    Pane p;
    p.pane->setTreeShown(true);
    p.fill(kUnits, {"R"});
    // The user picks Beta in the list: the choice follows.
    p.list->selectionModel()->select(p.list->model()->index(1, 0, p.list->model()->index(0, 0)),
                                     QItemSelectionModel::Select);
    EXPECT_EQ(p.chosen(), "101");
    p.pane->setFilter(QStringLiteral("alp"));
    EXPECT_EQ(p.shown(), "Region* Alpha -Beta* ");

    // The control refills with what the choice holds: nothing changes on screen.
    p.fill(kUnits, {"R", "B"});
    EXPECT_EQ(p.shown(), "Region* Alpha -Beta* ");
    p.pane->setFilter(QString());
    EXPECT_EQ(p.shown(), "Region* Alpha Beta* ");
    // Every unit chosen is one selection range, however the list is shown.
    p.fill(kUnits, {"R", "A", "B"});
    EXPECT_EQ(p.list->selectionModel()->selection().size(), 2); // Region; Alpha and Beta below it
    p.pane->setTreeShown(false);
    EXPECT_EQ(p.list->selectionModel()->selection().size(), 1);
    EXPECT_EQ(p.shown(), "Region* Alpha* Beta* ");
}

} // namespace
