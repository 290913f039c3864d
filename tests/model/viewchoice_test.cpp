#include "common/dlverror.h"
#include "model/viewchoice.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

// The choice tells its listeners exactly when something changed, so widgets bound to it neither
// miss a change nor loop: one signal per changed unit, one for a whole new selection, none for a
// choice that stays as it was.
TEST(ViewChoice, TellsOfEachRealChangeOfTheChosenUnits)
{
    ViewChoice choice;
    QSignalSpy resets(&choice, &ViewChoice::unitsReset);
    QSignalSpy changes(&choice, &ViewChoice::chosenChanged);
    ASSERT_TRUE(resets.isValid() && changes.isValid());

    choice.setUnits({"_A", "_B", "_C"}, {1}); // missing flags: not chosen
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(choice.unitCount(), 3);
    EXPECT_EQ(choice.buListKey(2), QStringLiteral("_C"));
    EXPECT_TRUE(choice.buListSelected(0));
    EXPECT_FALSE(choice.isChosen(2));

    const struct
    {
        const char *name;
        std::function<void()> act;
        QList<int> told;
        std::vector<bool> chosen;
    } steps[] = {
        {"choose B", [&] { choice.setChosen(1, true); }, {1}, {true, true, false}},
        {"B again", [&] { choice.setChosen(1, true); }, {}, {true, true, false}},
        {"a new selection",
         [&] {
             choice.setAllChosen({0, 0, 1});
         },
         {-1},
         {false, false, true}},
        {"the same selection",
         [&] {
             choice.setAllChosen({0, 0, 1});
         },
         {},
         {false, false, true}},
        {"short flags", [&] { choice.setAllChosen({1}); }, {-1}, {true, false, false}},
    };
    for (const auto &step : steps) {
        changes.clear();
        step.act();
        QList<int> told;
        for (const QList<QVariant> &args : changes)
            told.append(args.at(0).toInt());
        EXPECT_EQ(told, step.told) << step.name;
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(choice.isChosen(i), step.chosen[std::size_t(i)]) << step.name << " " << i;
    }

    for (const int index : {-1, 3}) {
        EXPECT_THROW((void)choice.unitKey(index), DLVError) << index;
        EXPECT_THROW(choice.setChosen(index, true), DLVError) << index;
    }
}

// Before anything sets them the options read as two radio buttons of which none is checked;
// setting one always tells, even to the value it had, so that the widgets show it.
TEST(ViewChoice, OptionsReadFalseUntilSetAndEverySettingIsTold)
{
    ViewChoice choice;
    QSignalSpy single(&choice, &ViewChoice::singleUnitsSet);
    QSignalSpy display(&choice, &ViewChoice::byWorkOrdersSet);
    EXPECT_FALSE(choice.singleUnits());
    EXPECT_FALSE(choice.byWorkOrders());
    choice.setSingleUnits(false);
    choice.setSingleUnits(true);
    choice.setByWorkOrders(true);
    choice.setByWorkOrders(true);
    EXPECT_EQ(single.count(), 2);
    EXPECT_EQ(display.count(), 2);
    EXPECT_TRUE(choice.singleUnits());
    EXPECT_TRUE(choice.byWorkOrders());
}

// The drill-down tests every id of a subtree against the list's ids: the set must follow each new
// list and drop the key's first character only (an empty id is an id too).
TEST(ViewChoice, IdSetFollowsTheList)
{
    ViewChoice choice;
    EXPECT_TRUE(choice.idSet().isEmpty());
    choice.setUnits({"_A", "_b", "_", "xLong id"}, {});
    EXPECT_EQ(choice.idSet(), (QSet<QString>{"A", "b", "", "Long id"}));
    choice.setChosen(0, true); // the choice is no list change
    EXPECT_EQ(choice.idSet().size(), 4);
    choice.setUnits({"_C"}, {1});
    EXPECT_EQ(choice.idSet(), (QSet<QString>{"C"}));
}
