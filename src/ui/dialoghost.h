#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

class CaptionCatalogue;
class QPrinter;
class QWidget;

/// The events of the manage-profiles dialog, each carrying the profile name. The control turns
/// them into host requests; an unset handler means the event is ignored.
struct ProfileDialogEvents
{
    std::function<void(const QString &name)> addProfile;
    std::function<void(const QString &name)> removeProfile;
    std::function<void(const QString &name)> chooseProfile;
};

/// The one seam through which the control shows anything modal: the error dialog, the about box,
/// message boxes, the two profile dialogs and the save and print dialogs of the toolbar. The
/// control holds one DialogHost; the real one (WidgetDialogHost) opens windows, a test's records
/// the calls and answers from a script.
///
/// Every call returns when the user has closed what it showed. owner is the control's main frame
/// (or nothing): dialogs disable it while shown and re-enable it when they close. captions may be
/// nothing (before the control is initialised); the dialogs then show English texts.
class DialogHost
{
public:
    enum class MessageKind
    {
        Information, ///< information icon, OK
        Question,    ///< question icon, Yes and No, No being the default button
        Warning,     ///< warning icon, OK
    };
    enum class MessageResult
    {
        Ok,
        Yes,
        No
    };

    virtual ~DialogHost() = default;

    /// The error dialog frmError: number, description and location of a trapped failure.
    virtual void showError(qint32 number, const QString &description, const QString &location,
                           const CaptionCatalogue *captions, QWidget *owner) = 0;

    /// The about box frmGenAbout. Every text comes from the caller, so the box serves every
    /// language; versionLabel is the word for "version" shown beside the version number.
    virtual void showAbout(const QString &title, const QString &productName,
                           const QString &description, const QString &comments,
                           const QString &rights, const QString &version,
                           const QString &versionLabel, QWidget *owner) = 0;

    /// A message box with text and title. Button texts come from captions ("OK", "Yes", "No")
    /// when given. Closing a question without answering counts as No.
    virtual MessageResult messageBox(MessageKind kind, const QString &text, const QString &title,
                                     const CaptionCatalogue *captions, QWidget *owner) = 0;

    /// The new-profile dialog frmNewProfile: asks for one valid profile name. The prompt and the
    /// title are caption keys. Returns the accepted name, trimmed, or nothing when cancelled.
    virtual std::optional<QString> getNewProfile(const CaptionCatalogue *captions,
                                                 const QString &promptKey, const QString &titleKey,
                                                 QWidget *owner) = 0;

    /// The manage-profiles dialog frmProfiles over the given names (in the control's list order)
    /// with currentName preselected. It reports what the user did only through events, called
    /// while the dialog is open or as it closes.
    virtual void manageProfiles(const QStringList &names, const QString &currentName,
                                const CaptionCatalogue *captions, QWidget *owner,
                                const ProfileDialogEvents &events) = 0;

    /// The save-file dialog: starts in initialFolder (the current folder when empty) with no file
    /// name, offers the one filter (for example "Comma-separated Files (*.csv)"), appends
    /// defaultSuffix to a name typed without one, and asks before replacing an existing file.
    /// Returns the chosen path, or an empty string when the user cancelled.
    virtual QString getSaveFileName(const QString &title, const QString &initialFolder,
                                    const QString &filter, const QString &defaultSuffix,
                                    QWidget *owner) = 0;

    /// The print dialog over printer, which the caller has preset (orientation, document name).
    /// The user's choices (printer, orientation, copies, ...) are written into printer. Returns
    /// true when the user chose to print.
    virtual bool selectPrinter(QPrinter &printer, QWidget *owner) = 0;
};
