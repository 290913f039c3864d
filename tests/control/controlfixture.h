#pragma once

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "control/drilldownrequests.h"
#include "control/gridoutput.h"
#include "control/gridviews.h"
#include "control/livecues.h"
#include "control/panelview.h"
#include "control/selectionoptions.h"
#include "control/statusline.h"
#include "control/toolbaractions.h"
#include "control/toprow.h"
#include "control/unitlistpane.h"
#include "control/viewscontroller.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"
#include "support/recordingdialoghost.h"
#include "views/outlinegridview.h"
#include "webdata/qzwebtransport.h"

#include <QCoreApplication>
#include <QLabel>
#include <QRadioButton>
#include <QTabBar>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>

/// North has a child East that no chosen unit reaches (a grey row); West is outside the sessions
/// the tests start, so the unit list does not offer it and it is never part of a request.
inline DLVDataBuilder sampleData()
{
    DLVDataBuilder b;
    b.unit("#", "All units", "#").unit("N", "North", "#").unit("E", "East", "N");
    b.unit("S", "South", "#").unit("W", "West", "S").format("EN", "hh:mm");
    b.general("N", "N", "10", "8", "4").general("E", "E", "1", "1", "1");
    b.general("S", "S", "5", "4", "2").general("W", "W", "2", "2", "2");
    b.detail("N", "INS", "A", {"3", "1", "0", "0", "7"}).detail("E", "INS", "A", {"1", "1"});
    b.detail("S", "REP", "B", {"2", "0", "1"}).detail("W", "REP", "B", {"2", "0", "1"});
    b.property("tqJeopardyThreshold", "45");
    return b;
}

class DLViewerTestAccess
{
public:
    static DLViewerPrivate &d(DLViewer &viewer) { return *viewer.d; }
};

/// A control on a 1280x800 surface whose dialogs are recorded instead of shown.
class ControlFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        viewer.reset();
        host.reset();
        viewer = std::make_unique<DLViewer>();
        viewer->resize(1280, 800);
        auto recording = std::make_unique<RecordingDialogHost>();
        dialogs = recording.get();
        d().setDialogHost(std::move(recording));
    }

    DLViewerPrivate &d() { return DLViewerTestAccess::d(*viewer); }

    void initialize(const QString &language = QStringLiteral("EN"))
    {
        viewer->Initialize(std::make_shared<QZWebTransport>(language));
        QString lang = language;
        viewer->SetRegionalFormatInfo(lang);
    }

    /// A scripted host starts the control with the session's units; then the data arrive.
    void start(const DLVDataBuilder &data, QStringList units,
               const QString &language = QStringLiteral("EN"))
    {
        host = std::make_unique<ScriptedHost>(*viewer);
        initialize(language);
        viewer->SetSessionBUIDList(units);
        send(data);
    }

    void send(const DLVDataBuilder &data)
    {
        QVariant message = data.variant();
        viewer->ReceiveMessage(message, QVariant(0), QVariant());
    }

    /// A shown control with sample data, North and South chosen and the views redrawn with them.
    void startChosen()
    {
        start(sampleData(), {"N", "E", "S"});
        select({"_N", "_S"});
        d().fills().cmdView_Click();
        send(sampleData());
        viewer->show();
    }

    /// Brings grid `index` into view: 0 the summary, 1 and 2 the hierarchy by work orders, points.
    OutlineGridView *showGrid(int index)
    {
        d().options().tabs()->setCurrentIndex(index == 0 ? 0 : 1);
        if (index > 0)
            d().options().displayOption(index - 1)->click();
        return d().views().view(index);
    }

    QStringList listKeys(bool selectedOnly)
    {
        QStringList out;
        const ViewChoice &choice = d().choice();
        for (int i = 0; i < choice.buListCount(); ++i)
            if (!selectedOnly || choice.buListSelected(i))
                out << choice.buListKey(i);
        return out;
    }

    /// Selects exactly the unit-list entries whose keys are given ("_" and the unit id).
    void select(const QStringList &keys)
    {
        for (int i = 0; i < d().choice().buListCount(); ++i)
            d().unitList().setSelected(i, keys.contains(d().choice().buListKey(i)));
    }

    template <typename T = QWidget> T *child(const char *name)
    {
        return viewer->findChild<T *>(QString::fromLatin1(name));
    }

    std::unique_ptr<ScriptedHost> host; // outlives the control it answers
    std::unique_ptr<DLViewer> viewer;
    RecordingDialogHost *dialogs = nullptr;
};
