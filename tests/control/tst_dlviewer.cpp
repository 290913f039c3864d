#include "common/dlverror.h"
#include "controlfixture.h"
#include "model/cdlvcontroller.h"
#include "ui/captioncatalogue.h"

#include <QAction>
#include <QPushButton>

namespace {

QColor textColour(QLabel *label)
{
    return label->palette().color(QPalette::WindowText);
}

} // namespace

using DLViewerShell = ControlFixture;

TEST_F(DLViewerShell, InitializeShowsTheWaitingStatusAndCaptionsInTheTransportLanguage)
{
    for (const char *language : {"EN", "PO", "SP"}) {
        SCOPED_TRACE(language);
        SetUp();
        initialize(QString::fromLatin1(language));
        const CaptionCatalogue &cat = *d().captions();
        auto *status = child<QLabel>("lblStatus");
        EXPECT_TRUE(status->isVisibleTo(viewer.get()));
        EXPECT_EQ(status->text(), cat.caption(QStringLiteral("msg-WaitingforDLVData")));
        EXPECT_EQ(textColour(status), QColor(0, 0, 255));
        EXPECT_EQ(viewer->cursor().shape(), Qt::WaitCursor);
        EXPECT_FALSE(child<QPushButton>("cmdView")->isEnabled());
        for (const char *key : {"SaveGrid", "PrintGrid", "Profiles"})
            EXPECT_FALSE(child<QAction>(key)->isVisible()) << key;
        EXPECT_TRUE(child<QAction>("Help")->isVisible());

        auto *tabs = child<QTabBar>("Tabs");
        EXPECT_EQ(tabs->tabText(0), cat.caption(QStringLiteral("BUSummary")));
        EXPECT_EQ(child<QLabel>("lblProfile")->text(),
                  cat.caption(QStringLiteral("CurrentProfile")) + " : ");
        if (QByteArray(language) != "SP") {
            EXPECT_TRUE(viewer->grab().save(
                QStringLiteral(DLV_SCREENSHOT_DIR "/dlviewer-waiting-%1.png").arg(language)));
        }
    }
}

TEST_F(DLViewerShell, SessionUnitsRaiseTheProfileListRequestUnlessAnIdRepeats)
{
    for (const QStringList &ids : {QStringList{}, QStringList{"A", "B", "A", "C"}}) {
        SCOPED_TRACE(ids.join(u',').toStdString());
        SetUp();
        initialize();
        int raised = 0;
        QObject::connect(viewer.get(), &DLViewer::GetProfileList, viewer.get(), [&](DLVParams &p) {
            ++raised;
            EXPECT_EQ(p, DLVParams{}); // the host supplies user and application itself
        });
        qint32 error = 0;
        try {
            QStringList units = ids;
            viewer->SetSessionBUIDList(units);
        } catch (const DLVError &e) {
            error = e.number();
        }
        // A repeated id is an error of the call; the units before it are kept.
        EXPECT_EQ(error, ids.isEmpty() ? 0 : DLVError::DuplicateKey);
        EXPECT_EQ(raised, ids.isEmpty() ? 1 : 0);
        EXPECT_EQ(d().fills().sessionUnits()->count(), ids.isEmpty() ? 0 : 2);
    }
}

TEST_F(DLViewerShell, ArgumentConversionFailuresReachTheHost)
{
    initialize();
    QVariant data = sampleData().variant();
    const struct
    {
        const char *name;
        QVariant dataType;
        QVariant tag;
        qint32 number; // 0: accepted
    } cases[] = {
        {"numeric text", QVariant(QStringLiteral(" 12 ")), QVariant(7), 0},
        {"empty variants", QVariant(), QVariant(), 0},
        {"text that is no number", QVariant(QStringLiteral("abc")), {}, DLVError::TypeMismatch},
        {"number beyond 32 bits", QVariant(1e12), QVariant(), DLVError::Overflow},
        {"an object as tag", QVariant(1), QVariant::fromValue(static_cast<QObject *>(viewer.get())),
         DLVError::TypeMismatch},
    };
    for (const auto &c : cases) {
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
        host = std::make_unique<ScriptedHost>(*viewer);
        host->deferred = deferred;
        initialize();
        QStringList units{"N", "S"};
        viewer->SetSessionBUIDList(units);
        host->flush();
        host->flush();
        // No stored profiles: a "Default" is made, stored once, and the control says it is ready.
        EXPECT_EQ(host->posts, QStringList{"ClientReady"});
        EXPECT_TRUE(host->store.nameExists(u"Default"));
        EXPECT_TRUE(child<QLabel>("lblCurrentProfile")->isVisibleTo(viewer.get()));
        EXPECT_EQ(child<QLabel>("lblCurrentProfile")->text(), "Default");

        send(sampleData());
        EXPECT_FALSE(child<QLabel>("lblStatus")->isVisibleTo(viewer.get()));
        EXPECT_TRUE(child<QLabel>("lblLastRefreshTime")->isVisibleTo(viewer.get()));
        EXPECT_TRUE(child<QPushButton>("cmdView")->isEnabled());
        EXPECT_FALSE(d().controller()->Busy().isSet(FillBusy::SummaryFill));
        EXPECT_FALSE(d().controller()->Busy().isSet(FillBusy::HierarchyFill));
        EXPECT_TRUE(dialogs->calls.empty());
    }
}

TEST_F(DLViewerShell, ServerStoppedShowsRedStatusAndTheNextLoadHidesIt)
{
    start(sampleData(), {"N"});
    send(DLVDataBuilder().named(QStringLiteral("DLVServerStopped")));
    auto *status = child<QLabel>("lblStatus");
    EXPECT_TRUE(status->isVisibleTo(viewer.get()));
    EXPECT_EQ(status->text(), d().captions()->caption(QStringLiteral("msg-DLVServerDown")));
    EXPECT_EQ(textColour(status), QColor(255, 0, 0));

    send(sampleData());
    EXPECT_FALSE(status->isVisibleTo(viewer.get()));
    EXPECT_TRUE(status->text().isEmpty());
    EXPECT_EQ(textColour(status), QColor(0, 0, 255));
}

TEST_F(DLViewerShell, LoadFailureIsReportedThroughTheErrorDialog)
{
    initialize();
    send(sampleData().withoutColumn(QStringLiteral("BUDetailsInfo"), QStringLiteral("WOLate")));
    ASSERT_FALSE(dialogs->calls.empty());
    const auto &call = dialogs->calls.front();
    EXPECT_EQ(call.kind, RecordingDialogHost::Kind::Error);
    EXPECT_EQ(call.location, QStringLiteral("cDLVController.LoadBUData"));
    EXPECT_EQ(call.owner, child<QWidget>("fraDLV"));
    EXPECT_EQ(call.captions, d().captions());
    send(sampleData()); // the controller stays usable
    EXPECT_TRUE(child<QPushButton>("cmdView")->isEnabled());
}

TEST_F(DLViewerShell, StopControlReleasesEverythingAndLaterCallsAreHarmless)
{
    start(sampleData(), {"N"});
    viewer->StopControl();
    EXPECT_EQ(d().controller(), nullptr);
    EXPECT_EQ(d().captions(), nullptr);
    EXPECT_EQ(d().fills().sessionUnits(), nullptr);
    EXPECT_FALSE(child<QPushButton>("cmdView")->isEnabled());
    EXPECT_FALSE(child<QAction>("Help")->isVisible());
    // A host that still sends something must not bring the control down.
    send(sampleData());
    QString result = ScriptedHost::plainAnswer();
    QString function = QStringLiteral("PutProfiles");
    viewer->ReceiveProfileResponse(result, function);
    viewer->ResizeControls();
    EXPECT_TRUE(dialogs->calls.empty());
}
