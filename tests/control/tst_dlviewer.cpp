#include "controlfixture.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"

#include "common/dlverror.h"
#include "model/cdlvcontroller.h"
#include "ui/captioncatalogue.h"

#include <QAction>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>

namespace {

QColor textColour(QLabel *label)
{
    return label->palette().color(QPalette::WindowText);
}

DLVDataBuilder smallData()
{
    DLVDataBuilder b;
    b.unit(QStringLiteral("#"), QStringLiteral("All units"), QStringLiteral("#"))
        .unit(QStringLiteral("N"), QStringLiteral("North"), QStringLiteral("#"))
        .unit(QStringLiteral("S"), QStringLiteral("South"), QStringLiteral("#"))
        .jobType(QStringLiteral("INS"), QStringLiteral("Installation"))
        .jobClass(QStringLiteral("A"), QStringLiteral("Class A"))
        .format(QStringLiteral("EN"), QStringLiteral("hh:mm"))
        .general(QStringLiteral("N"), QStringLiteral("North"), QStringLiteral("10"),
                 QStringLiteral("8"), QStringLiteral("4"))
        .general(QStringLiteral("S"), QStringLiteral("South"), QStringLiteral("5"),
                 QStringLiteral("4"), QStringLiteral("2"))
        .detail(QStringLiteral("N"), QStringLiteral("INS"), QStringLiteral("A"),
                {QStringLiteral("3"), QStringLiteral("1"), QStringLiteral("0"), QStringLiteral("0"),
                 QStringLiteral("7")})
        .property(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15"))
        .property(QStringLiteral("tqJeopardyThreshold"), QStringLiteral("30"));
    return b;
}

} // namespace

using DLViewerShell = ControlFixture;

TEST_F(DLViewerShell, InitializeShowsTheWaitingStatusWithDataControlsOff)
{
    initialize();
    auto *status = child<QLabel>("lblStatus");
    EXPECT_TRUE(status->isVisibleTo(viewer.get()));
    EXPECT_EQ(status->text(), d().captions->caption(QStringLiteral("msg-WaitingforDLVData")));
    EXPECT_FALSE(status->text().isEmpty());
    EXPECT_EQ(textColour(status), QColor(0, 0, 255));
    EXPECT_EQ(viewer->cursor().shape(), Qt::WaitCursor);
    EXPECT_FALSE(child<QPushButton>("cmdView")->isEnabled());
    for (const char *key : {"SaveGrid", "PrintGrid", "Profiles"})
        EXPECT_FALSE(viewer->findChild<QAction *>(QString::fromLatin1(key))->isVisible()) << key;
    EXPECT_TRUE(viewer->findChild<QAction *>(QStringLiteral("Help"))->isVisible());
}

TEST_F(DLViewerShell, CaptionsFollowTheTransportLanguage)
{
    struct Case
    {
        const char *language;
        const char *summaryTab;
    };
    for (const Case c : {Case{"EN", "BUSummary"}, Case{"PO", "BUSummary"}, Case{"SP", "BUSummary"}}) {
        SCOPED_TRACE(c.language);
        SetUp();
        initialize(QString::fromLatin1(c.language));
        const CaptionCatalogue &cat = *d().captions;
        auto *tabs = child<QTabBar>("Tabs");
        EXPECT_EQ(tabs->tabText(0), cat.caption(QString::fromLatin1(c.summaryTab)));
        EXPECT_EQ(tabs->tabToolTip(0), tabs->tabText(0));
        EXPECT_EQ(tabs->tabToolTip(1), tabs->tabText(1));
        EXPECT_EQ(child<QLabel>("lblBUName")->text(), cat.caption(QStringLiteral("BusinessUnits")) + " :");
        EXPECT_EQ(child<QLabel>("lblProfile")->text(), cat.caption(QStringLiteral("CurrentProfile")) + " : ");
        EXPECT_EQ(child<QLabel>("lblTechCount")->toolTip(), cat.caption(QStringLiteral("ViewTechCount")));
        EXPECT_EQ(child<QLabel>("lblTechCountCaption")->text(), cat.caption(QStringLiteral("TechCount")));
    }
}

TEST_F(DLViewerShell, SessionUnitsRaiseTheProfileListRequest)
{
    initialize();
    int raised = 0;
    QObject::connect(viewer.get(), &DLViewer::GetProfileList, viewer.get(), [&](DLVParams &p) {
        ++raised;
        EXPECT_EQ(p, DLVParams{}); // the host supplies user and application itself
    });
    QStringList none;
    viewer->SetSessionBUIDList(none);
    EXPECT_EQ(raised, 1);
    EXPECT_EQ(d().sessionBUs->count(), 0);
}

TEST_F(DLViewerShell, RepeatedSessionUnitIsAnErrorOfTheCall)
{
    initialize();
    int raised = 0;
    QObject::connect(viewer.get(), &DLViewer::GetProfileList, viewer.get(), [&](DLVParams &) { ++raised; });
    QStringList ids{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("C")};
    try {
        viewer->SetSessionBUIDList(ids);
        FAIL() << "a repeated id must reach the host";
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), DLVError::DuplicateKey);
    }
    EXPECT_EQ(raised, 0);
    ASSERT_EQ(d().sessionBUs->count(), 2);
    EXPECT_EQ(d().sessionBUs->keyAt(0), QStringLiteral("A"));
    EXPECT_EQ(d().sessionBUs->keyAt(1), QStringLiteral("B"));
}

TEST_F(DLViewerShell, ArgumentConversionFailuresReachTheHost)
{
    initialize();
    QVariant data = smallData().variant();
    struct Case
    {
        const char *name;
        QVariant dataType;
        QVariant tag;
        qint32 number; // 0: accepted
    };
    const Case cases[] = {
        {"numbers", QVariant(3), QVariant(QStringLiteral("t")), 0},
        {"numeric text", QVariant(QStringLiteral(" 12 ")), QVariant(7), 0},
        {"empty variants", QVariant(), QVariant(), 0},
        {"text that is no number", QVariant(QStringLiteral("abc")), QVariant(), DLVError::TypeMismatch},
        {"number beyond 32 bits", QVariant(1e12), QVariant(), DLVError::Overflow},
        {"a list as type", QVariant(QStringList{QStringLiteral("1")}), QVariant(), DLVError::TypeMismatch},
        {"an object as tag", QVariant(1), QVariant::fromValue(static_cast<QObject *>(viewer.get())),
         DLVError::TypeMismatch},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        qint32 thrown = 0;
        try {
            viewer->ReceiveMessage(data, c.dataType, c.tag);
        } catch (const DLVError &e) {
            thrown = e.number();
        }
        EXPECT_EQ(thrown, c.number);
    }
}

TEST_F(DLViewerShell, StartUpInTheHostsCallingOrder)
{
    for (const bool deferred : {false, true}) {
        SCOPED_TRACE(deferred ? "host answers later" : "host answers inside the signal");
        SetUp();
        ScriptedHost host(*viewer);
        host.deferred = deferred;
        initialize();
        QStringList units{QStringLiteral("N"), QStringLiteral("S")};
        viewer->SetSessionBUIDList(units);
        host.flush();
        host.flush();
        // No stored profiles: a "Default" is made, stored once, and the control says it is ready.
        EXPECT_EQ(host.posts, QStringList{QStringLiteral("ClientReady")});
        EXPECT_TRUE(host.store.nameExists(u"Default"));
        EXPECT_TRUE(child<QLabel>("lblCurrentProfile")->isVisibleTo(viewer.get()));
        EXPECT_EQ(child<QLabel>("lblCurrentProfile")->text(), QStringLiteral("Default"));

        QVariant data = smallData().variant();
        viewer->ReceiveMessage(data, QVariant(0), QVariant());
        EXPECT_FALSE(child<QLabel>("lblStatus")->isVisibleTo(viewer.get()));
        EXPECT_TRUE(child<QLabel>("lblLastRefreshTime")->isVisibleTo(viewer.get()));
        EXPECT_TRUE(child<QPushButton>("cmdView")->isEnabled());
        EXPECT_FALSE(d().mDLV->SingleBUGridBusy);
        EXPECT_FALSE(d().mDLV->HierarchyGridBusy);
        EXPECT_TRUE(dialogs->calls.empty());
    }
}

TEST_F(DLViewerShell, ServerStoppedShowsRedStatusAndTheNextLoadHidesIt)
{
    ScriptedHost host(*viewer);
    initialize();
    QStringList units{QStringLiteral("N")};
    viewer->SetSessionBUIDList(units);
    QVariant data = smallData().variant();
    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    QVariant stopped = DLVDataBuilder().named(QStringLiteral("DLVServerStopped")).variant();
    viewer->ReceiveMessage(stopped, QVariant(0), QVariant());
    auto *status = child<QLabel>("lblStatus");
    EXPECT_TRUE(status->isVisibleTo(viewer.get()));
    EXPECT_EQ(status->text(), d().captions->caption(QStringLiteral("msg-DLVServerDown")));
    EXPECT_EQ(textColour(status), QColor(255, 0, 0));

    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    EXPECT_FALSE(status->isVisibleTo(viewer.get()));
    EXPECT_TRUE(status->text().isEmpty());
    EXPECT_EQ(textColour(status), QColor(0, 0, 255));
}

TEST_F(DLViewerShell, DataBeforeProfilesIsShownToo)
{
    initialize();
    QVariant data = smallData().variant();
    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    EXPECT_FALSE(child<QLabel>("lblStatus")->isVisibleTo(viewer.get()));
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerShell, LoadFailureIsReportedThroughTheErrorDialog)
{
    initialize();
    QVariant data = smallData().withoutColumn(QStringLiteral("BUDetailsInfo"), QStringLiteral("WOLate")).variant();
    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    ASSERT_FALSE(dialogs->calls.empty());
    const auto &call = dialogs->calls.front();
    EXPECT_EQ(call.kind, RecordingDialogHost::Kind::Error);
    EXPECT_EQ(call.location, QStringLiteral("cDLVController.LoadBUData"));
    EXPECT_EQ(call.owner, child<QWidget>("fraDLV"));
    EXPECT_EQ(call.captions, d().captions.get());
    // The controller stays usable.
    QVariant good = smallData().variant();
    viewer->ReceiveMessage(good, QVariant(0), QVariant());
    EXPECT_TRUE(child<QPushButton>("cmdView")->isEnabled());
}

TEST_F(DLViewerShell, StopControlReleasesEverythingAndLaterCallsAreHarmless)
{
    ScriptedHost host(*viewer);
    initialize();
    QStringList units{QStringLiteral("N")};
    viewer->SetSessionBUIDList(units);
    QVariant data = smallData().variant();
    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    viewer->StopControl();
    EXPECT_EQ(d().mDLV, nullptr);
    EXPECT_EQ(d().captions, nullptr);
    EXPECT_EQ(d().sessionBUs, nullptr);
    EXPECT_FALSE(child<QPushButton>("cmdView")->isEnabled());
    EXPECT_FALSE(viewer->findChild<QAction *>(QStringLiteral("Help"))->isVisible());
    // A host that still sends something must not bring the control down.
    viewer->ReceiveMessage(data, QVariant(0), QVariant());
    QString result = ScriptedHost::plainAnswer();
    QString function = QStringLiteral("PutProfiles");
    viewer->ReceiveProfileResponse(result, function);
    viewer->ResizeControls();
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerShell, PicturesOfTheWaitingControl)
{
    for (const char *language : {"EN", "PO"}) {
        SetUp();
        initialize(QString::fromLatin1(language));
        const QImage picture = viewer->grab().toImage();
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(picture.save(QStringLiteral(DLV_SCREENSHOT_DIR "/dlviewer-waiting-%1.png")
                                     .arg(QString::fromLatin1(language))));
    }
}
