#include "ui/errorreport.h"

#include "ui/dialoghost.h"
#include "ui/uilog.h"

#include <QCoreApplication>

ErrorReport::ErrorReport(DialogHost *host) : m_host(host) {}

ErrorReport::~ErrorReport() = default;

void ErrorReport::reportError(qint32 number, const QString &description, const QString &location)
{
    if (!m_host) {
        // Only while the control is being set up or torn down; a failure must still not vanish.
        qCWarning(lcUi) << "error without a dialog host:" << location << number << description;
        return;
    }
    m_host->showError(number, description, location, m_captions, m_owner.data());
    QCoreApplication::processEvents();
}
