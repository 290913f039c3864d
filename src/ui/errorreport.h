#pragma once

#include "common/errorreporter.h"

#include <QPointer>
#include <QWidget>

class CaptionCatalogue;
class DialogHost;

/// The control's one error-report routine: shows every trapped failure in the error dialog,
/// through the control's DialogHost, with the control's captions (none before Initialize) and its
/// main frame as owner, then lets pending events run once so the screen is repainted before the
/// failing procedure returns.
///
/// Holds no ownership: the control owns the dialog host and the caption catalogue, sets them here
/// and clears them before releasing them.
class ErrorReport final : public ErrorReporter
{
public:
    explicit ErrorReport(DialogHost *host = nullptr);
    ~ErrorReport() override;
    Q_DISABLE_COPY_MOVE(ErrorReport)

    void setDialogHost(DialogHost *host) { m_host = host; }
    [[nodiscard]] DialogHost *dialogHost() const { return m_host; }
    void setCaptions(const CaptionCatalogue *captions) { m_captions = captions; }
    [[nodiscard]] const CaptionCatalogue *captions() const { return m_captions; }
    void setOwner(QWidget *owner) { m_owner = owner; }
    [[nodiscard]] QWidget *owner() const { return m_owner; }

    void reportError(qint32 number, const QString &description, const QString &location) override;

private:
    DialogHost *m_host = nullptr;
    const CaptionCatalogue *m_captions = nullptr;
    QPointer<QWidget> m_owner;
};
