#pragma once

#include <QString>

class ErrorReporter;
class QVariant;
class QZWebTable;

/// Decodes the answers a host gives to profile requests. Whatever form an answer takes (a
/// document in a string, or a host data object), it carries an "Error" table whose first row says
/// whether the host's operation failed. ParseResult finds that table, keeps the host's error in
/// the last-error fields and shows it through the error report with the caller's location.
class ResultEnvelope
{
public:
    explicit ResultEnvelope(ErrorReporter *reporter) : m_reporter(reporter) {}

    /// Sets recognised to true when the result held an "Error" table (whatever its verdict).
    /// A host error (ErrorNumber whose leading number is not 0) fills the last-error fields and is
    /// reported with `location`. A document that cannot be read at all is reported too (so a host
    /// writer sees why an answer was ignored) and leaves recognised as far as it had got.
    void ParseResult(const QVariant &result, const QString &location, bool &recognised);

    [[nodiscard]] qint32 LastErrorNumber() const { return m_lastErrorNumber; }
    [[nodiscard]] const QString &LastErrorDescription() const { return m_lastErrorDescription; }
    void ClearLastError();

    void setReporter(ErrorReporter *reporter) { m_reporter = reporter; }

private:
    void readErrorTable(const QZWebTable &table, const QString &location);

    ErrorReporter *m_reporter = nullptr;
    qint32 m_lastErrorNumber = 0;
    QString m_lastErrorDescription;
};
