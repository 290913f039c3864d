#pragma once

#include "model/dlvdatabuilder.h"

#include <QRandomGenerator>
#include <QStringList>

/// A realistic organisation for pictures and end-to-end runs: four regions under "#", three
/// districts in each, three crews in each district (52 units), ten job types, four classes.
/// Crews and districts carry detail rows; every unit has technicians and hours.
inline DLVDataBuilder realisticOrganisation(quint32 seed = 20240301)
{
    QRandomGenerator random(seed);
    const auto between = [&random](int low, int high) {
        return QString::number(low + int(random.bounded(high - low + 1)));
    };
    DLVDataBuilder b;
    b.unit("#", "All Business Units", "");
    const QStringList regions = {"North Region", "South Region", "East Region", "West Region"};
    const QStringList towns = {"Aberdeen", "Inverness", "Dundee",  "Exeter",
                               "Plymouth", "Truro",     "Norwich", "Ipswich",
                               "Lincoln",  "Bristol",   "Cardiff", "Swansea"};
    const std::pair<const char *, const char *> jobTypes[] = {
        {"INST", "Installation"}, {"REPR", "Repair"},      {"MAINT", "Maintenance"},
        {"DISC", "Disconnect"},   {"SURV", "Site Survey"}, {"TRBL", "Trouble Call"}};
    for (const auto &[code, desc] : jobTypes)
        b.jobType(code, desc);
    const QStringList classes = {"RES", "BUS", "PRI"};
    b.jobClass("RES", "Residential").jobClass("BUS", "Business").jobClass("PRI", "Priority");
    b.format("EN", "hh:nn AMPM");

    const auto details = [&](const QString &id, int scale) {
        for (const auto &[code, desc] : jobTypes) {
            if (random.bounded(10) < 4)
                continue;
            for (const QString &cls : classes) {
                if (random.bounded(10) < 5)
                    continue;
                const QString open = between(0, 12 * scale);
                const QString done = between(0, 20 * scale);
                b.detail(id, code, cls,
                         {open, between(0, 3 * scale), between(0, 2 * scale), between(0, 2 * scale),
                          done, between(0, scale), between(0, scale),
                          QString::number(open.toInt() * 3), between(0, 6 * scale),
                          between(0, 4 * scale), between(0, 4 * scale),
                          QString::number(done.toInt() * 3), between(0, 2 * scale),
                          between(0, 2 * scale)});
            }
        }
    };
    for (int r = 0; r < regions.size(); ++r) {
        const QString region = QStringLiteral("R%1").arg(r + 1);
        b.unit(region, regions[r], "#");
        b.general(region, regions[r], between(2, 4), between(10, 30), between(5, 20));
        for (int t = 0; t < 3; ++t) {
            const QString district = region + QStringLiteral("D%1").arg(t + 1);
            const QString town = towns[r * 3 + t];
            b.unit(district, town + QStringLiteral(" District"), region);
            b.general(district, town, between(1, 3), between(5, 20), between(2, 12));
            details(district, 1);
            for (int c = 0; c < 3; ++c) {
                const QString crew = district + QStringLiteral("C%1").arg(c + 1);
                const QString name = town + QStringLiteral(" Crew %1").arg(c + 1);
                b.unit(crew, name, district);
                b.general(crew, name, between(4, 12), between(20, 70), between(10, 40));
                details(crew, 2);
            }
        }
    }
    return b;
}
