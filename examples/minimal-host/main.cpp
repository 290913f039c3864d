// A minimal host of the Dashlon Viewer control: one window with the control, one small data
// message, and profiles kept in memory. Copy it as the start of your own host; the document
// formats are described in docs/host-protocol.md of the Dashlon Viewer sources.

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QTimer>
#include <control/dlviewer.h>
#include <memory>
#include <webdata/qzwebdata.h>
#include <webdata/qzwebmessage.h>
#include <webdata/qzwebprofiles.h>
#include <webdata/qzwebtable.h>
#include <webdata/qzwebtransport.h>
#include <webdata/webvariant.h>

namespace {

// Every answer to a profile request carries an "Error" table; ErrorNumber "0" means success.
QZWebTable errorTable(int number = 0, const QString &description = {})
{
    QZWebTable table(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    table.appendRow({QString::number(number), description});
    return table;
}

// A "<WebData>" answer, with a "<ProfileIDs>" list when the request expects names.
QString dataAnswer(const QStringList *names = nullptr)
{
    QZWebData data;
    data.addTable(errorTable());
    QString xml = data.toXml();
    if (names) {
        QString list = QStringLiteral("<ProfileIDs>");
        for (const QString &name : *names)
            list += QStringLiteral("<ProfileID>%1</ProfileID>").arg(name);
        list += QStringLiteral("</ProfileIDs>");
        xml.insert(xml.lastIndexOf(QStringLiteral("</WebData>")), list);
    }
    return xml;
}

// One "DLVData" refresh: the six tables the control reads. All values are text.
std::shared_ptr<QZWebMessage> sampleData()
{
    auto data = std::make_shared<QZWebData>();

    // The tree: a root "#" (its own parent) holding the company name, units below it.
    QZWebTable units(QStringLiteral("BusinessUnits"), {"BUID", "BUDesc", "ParentBUID"});
    units.appendRow({"#", "Example Company", "#"});
    units.appendRow({"N", "North Region", "#"});
    units.appendRow({"N1", "Harbour Crew", "N"});
    units.appendRow({"N2", "Hill Crew", "N"});
    data->addTable(units);

    QZWebTable types(QStringLiteral("JobTypes"), {"JobType", "JobTypeDesc"});
    types.appendRow({"INST", "Installation"});
    types.appendRow({"REP", "Repair"});
    data->addTable(types);

    QZWebTable classes(QStringLiteral("JobClasses"), {"JobClass", "JobClassDesc"});
    classes.appendRow({"RES", "Residential"});
    data->addTable(classes);

    // How the control writes its refresh times, per language.
    QZWebTable formats(QStringLiteral("RegionalFormats"), {"languageCode", "timeformat"});
    formats.appendRow({"EN", "h:nn AM/PM"});
    formats.appendRow({"PO", "hh:nn"});
    formats.appendRow({"SP", "hh:nn"});
    data->addTable(formats);

    // Per unit: technicians and hours.
    QZWebTable general(QStringLiteral("BUGeneralInfo"),
                       {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"});
    general.appendRow({"N1", "Harbour Crew", "6", "24", "12"});
    general.appendRow({"N2", "Hill Crew", "4", "16", "16"});
    data->addTable(general);

    // Per unit, job type and class: work orders, then points, in the seven statuses.
    QZWebTable details(QStringLiteral("BUDetailsInfo"),
                       {"BUID", "JobType", "JobClass", "WOOpen", "WOWarning", "WOJeopardy",
                        "WOLate", "WOCompleted", "WOCanceled", "WONotDone", "PtsOpen", "PtsWarning",
                        "PtsJeopardy", "PtsLate", "PtsCompleted", "PtsCanceled", "PtsNotDone"});
    details.appendRow({"N1", "INST", "RES", "3", "1", "0", "1", "9", "0", "1", "15", "5", "0", "5",
                       "45", "0", "5"});
    details.appendRow(
        {"N2", "REP", "RES", "2", "0", "1", "0", "7", "1", "0", "2", "0", "1", "0", "7", "1", "0"});
    data->addTable(details);

    auto message = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
    message->setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15")); // minutes
    message->setProperty(QStringLiteral("tqJeopardyThreshold"), QStringLiteral("30"));
    message->addData(std::move(data));
    return message;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QMainWindow window;
    auto *viewer = new DLViewer(&window); // owned by the window
    window.setCentralWidget(viewer);
    window.resize(1100, 700);

    // The user's profiles, kept for this run only. A real host stores them per user.
    QZWebProfiles profiles;

    // Each profile request is answered at once with ReceiveProfileResponse.
    auto answer = [viewer](QString function, QString result) {
        viewer->ReceiveProfileResponse(result, function);
    };
    QObject::connect(viewer, &DLViewer::GetProfileList, &window, [&](DLVParams &) {
        QStringList names;
        for (int i = 1; i <= profiles.count(); ++i)
            names.append(profiles.item(i).name());
        answer(QStringLiteral("GetProfileList"), dataAnswer(&names));
    });
    QObject::connect(viewer, &DLViewer::GetProfiles, &window, [&](DLVParams &params) {
        // The whole set, the requested profile first (an empty set is fine: the control then
        // creates "Default" and sends it back with PutProfiles).
        QZWebProfiles answerSet;
        answerSet.setErrorTable(errorTable());
        if (const QZWebProfile *wanted = profiles.find(params.ProfileName))
            answerSet.add(wanted->name()) = *wanted;
        for (int i = 1; i <= profiles.count(); ++i)
            if (!answerSet.nameExists(profiles.item(i).name()))
                answerSet.add(profiles.item(i).name()) = profiles.item(i);
        answer(QStringLiteral("GetProfiles"), answerSet.toXml());
    });
    auto store = [&](const QString &xml) {
        const QZWebProfiles sent = QZWebProfiles::fromXml(xml);
        for (int i = 1; i <= sent.count(); ++i) {
            profiles.remove(sent.item(i).name());
            profiles.add(sent.item(i).name()) = sent.item(i);
        }
    };
    QObject::connect(viewer, &DLViewer::PutProfiles, &window, [&](DLVParams &params) {
        store(params.ProfilesXML);
        answer(QStringLiteral("PutProfiles"), dataAnswer());
    });
    QObject::connect(viewer, &DLViewer::SaveProfileAs, &window, [&](DLVParams &params) {
        store(params.ProfilesXML);
        const QStringList names = {QZWebProfiles::fromXml(params.ProfilesXML).item(1).name()};
        answer(QStringLiteral("SaveProfileAs"), dataAnswer(&names));
    });
    QObject::connect(viewer, &DLViewer::AddProfiles, &window, [&](DLVParams &params) {
        if (!profiles.nameExists(params.ProfileName))
            profiles.add(params.ProfileName);
        const QStringList names = {params.ProfileName};
        answer(QStringLiteral("AddProfiles"), dataAnswer(&names));
    });
    QObject::connect(viewer, &DLViewer::RemoveProfiles, &window, [&](DLVParams &params) {
        profiles.remove(params.ProfileName);
        const QStringList names = {params.ProfileName};
        answer(QStringLiteral("RemoveProfiles"), dataAnswer(&names));
    });

    // "ClientReady": the control has its profile and waits for data. Send it after the
    // control's own call has returned.
    QObject::connect(viewer, &DLViewer::PostRequest, &window, [viewer](QString &request) {
        if (request != QLatin1String("ClientReady"))
            return;
        QTimer::singleShot(0, viewer, [viewer] {
            QVariant data = WebVariant::wrap(sampleData());
            viewer->ReceiveMessage(data, 0, QString());
            // What the control shows can be read back, for a title, a log or a check.
            const DLVGrid tree = viewer->Grid(DLVGrid::HierarchyWorkOrders);
            const int root = tree.FindRow(QStringLiteral("#"));
            viewer->window()->setWindowTitle(
                QStringLiteral("%1: %2 technicians")
                    .arg(tree.TextMatrix(root, DLVGrid::HierarchyUnit),
                         viewer->PanelText(DLViewer::PanelFigure::TechCount)));
        });
    });

    // A double-click on a figure asks for the records behind it; this host has none to list.
    QObject::connect(viewer, &DLViewer::GetDetails, &window, [&window](DLVParams &params) {
        QMessageBox::information(&window, QStringLiteral("Details"),
                                 QStringLiteral("A real host would now list the %1 records of "
                                                "units %2 with status %3.")
                                     .arg(params.Info, params.BUID, params.JobStatus));
    });

    // The start-up calls, in this order.
    window.show();
    viewer->Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
    QString language = QStringLiteral("EN");
    viewer->SetRegionalFormatInfo(language);
    QStringList sessionUnits = {"N", "N1", "N2"};
    viewer->SetSessionBUIDList(sessionUnits); // the profile requests start here

    const int status = QApplication::exec();
    viewer->StopControl();
    return status;
}
