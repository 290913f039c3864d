#pragma once

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "support/recordingdialoghost.h"
#include "webdata/qzwebtransport.h"

#include <QLabel>

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
        viewer = std::make_unique<DLViewer>();
        viewer->resize(1280, 800);
        auto host = std::make_unique<RecordingDialogHost>();
        dialogs = host.get();
        d().setDialogHost(std::move(host));
    }

    DLViewerPrivate &d() { return DLViewerTestAccess::d(*viewer); }

    void initialize(const QString &language = QStringLiteral("EN"))
    {
        viewer->Initialize(std::make_shared<QZWebTransport>(language));
        QString lang = language;
        viewer->SetRegionalFormatInfo(lang);
    }

    template <typename T = QWidget>
    T *child(const char *name)
    {
        return viewer->findChild<T *>(QString::fromLatin1(name));
    }

    std::unique_ptr<DLViewer> viewer;
    RecordingDialogHost *dialogs = nullptr;
};
