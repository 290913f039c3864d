#pragma once

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"
#include "support/recordingdialoghost.h"
#include "webdata/qzwebtransport.h"

#include <QLabel>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>

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

    /// Selects exactly the unit-list entries whose keys are given ("_" and the unit id).
    void select(const QStringList &keys)
    {
        QTreeWidget *list = d().lvBU;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            list->topLevelItem(i)->setSelected(keys.contains(d().buListKey(i)));
    }

    template <typename T = QWidget> T *child(const char *name)
    {
        return viewer->findChild<T *>(QString::fromLatin1(name));
    }

    std::unique_ptr<ScriptedHost> host; // outlives the control it answers
    std::unique_ptr<DLViewer> viewer;
    RecordingDialogHost *dialogs = nullptr;
};
