#pragma once

#include <QDialog>

class CaptionCatalogue;
class QLabel;
class QPushButton;

/// The error dialog every trapped failure ends in: the error number, its description and the
/// location ("Class.Procedure") of the procedure that failed, a word of advice and one Continue
/// button. Fixed texts come from the caption lookup ("frmError-Caption", "fraError-Label1" to
/// "fraError-Label5", "fraError-cmdCont") or are English when there is none.
///
/// Child objectNames: Label1 to Label5, lblErrNum, lblErrStr, lblErrLoc, cmdCont.
class frmError final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmError)

public:
    explicit frmError(QWidget *parent = nullptr);
    ~frmError() override;

    /// Shows a new error dialog modally and returns when the user has closed it. A given owner
    /// frame is disabled while the dialog is open and restored afterwards; the dialog then
    /// belongs to the frame's parent window. captions and owner may be nothing.
    static void ShowError(qint32 number, const QString &description, const QString &location,
                          const CaptionCatalogue *captions, QWidget *owner);

    /// Puts the fixed texts (from captions, or English) and the error's details into the form.
    void setTexts(qint32 number, const QString &description, const QString &location,
                  const CaptionCatalogue *captions);

    /// The English fixed text for a caption key of this form (empty for other keys).
    [[nodiscard]] static QString englishText(const QString &key);

private:
    QLabel *m_label1 = nullptr;
    QLabel *m_label2 = nullptr;
    QLabel *m_label3 = nullptr;
    QLabel *m_label4 = nullptr;
    QLabel *m_label5 = nullptr;
    QLabel *m_errNum = nullptr;
    QLabel *m_errStr = nullptr;
    QLabel *m_errLoc = nullptr;
    QPushButton *m_cont = nullptr;
};
