#pragma once

#include <QString>
#include <QStringList>

/// The command line of dlv-host, parsed and checked before any window exists, so that a bad
/// argument is reported (exit status 2) even on a machine without a display.
class HostOptions
{
public:
    enum ExitStatus : int
    {
        ExitOk = 0,
        ExitFailure = 1,      ///< an output could not be written, or the control reported an error
        ExitBadArguments = 2, ///< a bad or unknown argument
        ExitBadData = 3,      ///< an unreadable or invalid data document
    };

    enum class Display
    {
        AsProfile,
        WorkOrders,
        Points
    };
    enum class Tab
    {
        Summary,
        Hierarchy
    };

    /// What the command line asks for.
    enum class Action
    {
        Run,              ///< start the host (interactive, or batch when a batch option is given)
        Help,             ///< print helpText() and stop
        Version,          ///< print the version and stop
        GenerateDatabase, ///< write a generated day to the work-order database dbGenerate
        Error             ///< print errorMessage and stop with ExitBadArguments
    };

    static constexpr int DefaultRefreshSeconds = 30;
    static constexpr int MaxRefreshSeconds = 24 * 60 * 60;
    /// Data documents larger than this are refused unread (a stray device or an endless stream
    /// must not take the machine's memory); --max-document-mib raises it.
    static constexpr int DefaultMaxDocumentMiB = 256;
    static constexpr int MaxMaxDocumentMiB = 16 * 1024;

    Action action = Action::Run;
    QString errorMessage;

    QString dataPath;        ///< empty: the built-in demo (or the work-order database dbUrl)
    QString dbUrl;           ///< a work-order database to read on every refresh
    QString dbGenerate;      ///< the work-order database to generate
    QString dbClock;         ///< the time of day of the generated day ("HH:mm"), empty: 10:30
    bool dbSimulate = false; ///< move the database's day on at every refresh
    QString language = QStringLiteral("EN");
    QString user;             ///< empty: the login name
    QString profilesPath;     ///< empty: the default store
    QStringList sessionUnits; ///< empty with sessionUnitsGiven false: every unit
    bool sessionUnitsGiven = false;
    int refreshSeconds = DefaultRefreshSeconds;
    int maxDocumentMiB = DefaultMaxDocumentMiB;
    quint32 seed = 0;
    bool seedGiven = false;

    // The control's options over its figures, off unless asked for.
    bool freshness = false;
    bool changeCues = false;
    bool exceptions = false;
    bool unitTree = false;
    bool trend = false; ///< open the trend chart beside the control

    // Batch mode.
    QStringList select;
    bool selectGiven = false;
    bool aggregate = false;
    Display display = Display::AsProfile;
    bool tabGiven = false;
    Tab tab = Tab::Summary;
    QString profile;
    QString exportCsv;
    QString printPdf;
    QString screenshot;
    bool panel = false;

    /// True when an option asks for a headless run that ends after the first complete fill.
    [[nodiscard]] bool isBatch() const;

    /// Parses the arguments (the program name first, as in argv).
    [[nodiscard]] static HostOptions parse(const QStringList &arguments);
    [[nodiscard]] static QString helpText();
    /// The login name of the user running the host.
    [[nodiscard]] static QString loginName();
};
