#pragma once

#include "ui/dialoghost.h"

#include <cstdio>

/// Dialogs for the benchmark's control: nothing opens (a modal window would stop the run); an
/// error is counted and printed, so that a broken run does not pass for a fast one. A quiet host
/// only counts (the endurance run sends malformed messages on purpose).
class BenchDialogHost final : public DialogHost
{
public:
    explicit BenchDialogHost(int &errors, bool quiet = false) : m_errors(errors), m_quiet(quiet) {}

    void showError(qint32 number, const QString &description, const QString &location,
                   const CaptionCatalogue *, QWidget *) override
    {
        ++m_errors;
        if (!m_quiet)
            std::fprintf(stderr, "error %d at %s: %s\n", number, location.toUtf8().constData(),
                         description.toUtf8().constData());
    }
    void showAbout(const QString &, const QString &, const QString &, const QString &,
                   const QString &, const QString &, const QString &, QWidget *) override
    {}
    MessageResult messageBox(MessageKind, const QString &, const QString &,
                             const CaptionCatalogue *, QWidget *) override
    {
        return MessageResult::Ok;
    }
    std::optional<QString> getNewProfile(const CaptionCatalogue *, const QString &, const QString &,
                                         QWidget *) override
    {
        return std::nullopt;
    }
    void manageProfiles(const QStringList &, const QString &, const CaptionCatalogue *, QWidget *,
                        const ProfileDialogEvents &) override
    {}
    QString getSaveFileName(const QString &, const QString &, const QString &, const QString &,
                            QWidget *) override
    {
        return QString();
    }
    bool selectPrinter(QPrinter &, QWidget *) override { return false; }

private:
    int &m_errors;
    bool m_quiet;
};
