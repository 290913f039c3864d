#pragma once

#include "model/cdlvcontroller.h"
#include "model/dlvdatabuilder.h"
#include "model/fakesurface.h"
#include "support/recordingreporter.h"

#include <QDateTime>
#include <gtest/gtest.h>
#include <stdexcept>

/// Counts emissions of a fill signal. (QSignalSpy cannot record the by-reference model argument.)
class FillCounter
{
public:
    FillCounter(cDLVController *controller, void (cDLVController::*signal)(BusinessUnits &))
    {
        QObject::connect(controller, signal, controller, [this](BusinessUnits &) { ++m_count; });
    }
    [[nodiscard]] int count() const { return m_count; }

private:
    int m_count = 0;
};

/// A controller wired to a fake surface and a recording reporter, with a fixed clock (10:50).
/// load() delivers a message as if no grid fill were in progress, since no views are connected
/// here to clear the busy flags. Usable as a fixture or, one per row, in case tables.
struct ControllerRig
{
    ControllerRig()
    {
        controller.Initialize(&surface);
        controller.setClock([this] { return now; });
    }

    void load(const DLVDataBuilder &builder)
    {
        controller.Busy().clear();
        controller.ReceiveMessage(builder.variant(), 0, QString());
    }

    [[nodiscard]] const BusinessUnit &unit(QStringView id) const
    {
        const BusinessUnit *found = controller.BUs().Item(id);
        if (!found)
            throw std::runtime_error("unit not loaded");
        return *found;
    }

    /// "location number" of every report, for compact expectations.
    [[nodiscard]] std::vector<std::string> reportTexts() const
    {
        std::vector<std::string> out;
        for (const auto &r : reporter.reports)
            out.push_back(r.location.toStdString() + " " + std::to_string(r.number));
        return out;
    }

    RecordingReporter reporter;
    FakeSurface surface;
    cDLVController controller{&reporter};
    QDateTime now{QDate(2024, 3, 1), QTime(10, 50)};
};

class ControllerFixture : public ::testing::Test, public ControllerRig
{};

using Reports = std::vector<std::string>;
