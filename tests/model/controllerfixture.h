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

/// A controller wired to a fake surface, a recording reporter and a record of the refresh times
/// it tells of, with a fixed clock (10:50).
/// load() delivers a message as if no grid fill were in progress, since no views are connected
/// here to clear the busy flags. Usable as a fixture or, one per row, in case tables.
struct ControllerRig
{
    ControllerRig()
    {
        controller.Initialize(&surface);
        controller.setClock([this] { return now; });
        QObject::connect(&controller, &cDLVController::RefreshTimesChanged, &controller,
                         [this](const QString &last, const QString &next) {
                             ++times.count;
                             times.last = last;
                             times.next = next;
                         });
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

    /// The refresh times the controller told of: how often, and the last texts.
    struct
    {
        int count = 0;
        QString last, next;
    } times;
    RecordingReporter reporter;
    FakeSurface surface;
    cDLVController controller{&reporter};
    QDateTime now{QDate(2024, 3, 1), QTime(10, 50)};
};

class ControllerFixture : public ::testing::Test, public ControllerRig
{};

using Reports = std::vector<std::string>;
