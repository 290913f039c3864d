#pragma once

#include <QDialog>

class QFrame;
class QLabel;
class QPushButton;

/// The about box: logo, product title and subtitle, comments, rights line, an etched separator,
/// the product-name picture and the version with an OK button. It holds no texts of its own;
/// the caller passes every text, so the box serves every language.
///
/// Child objectNames: imgLogo, lblTitle, lblDescription, lblComments, lblRights, linSeparator0
/// and linSeparator1 (the separator's lines), imgName, lblVerText, lblVersion, cmdOK.
class frmGenAbout final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmGenAbout)

public:
    explicit frmGenAbout(QWidget *parent = nullptr);
    ~frmGenAbout() override;

    /// Shows a new about box modally and returns when it has been closed. A given owner frame is
    /// disabled while the box is open and restored afterwards; the box then belongs to the
    /// frame's parent window.
    static void ShowAbout(const QString &title, const QString &productName,
                          const QString &description, const QString &comments,
                          const QString &rights, const QString &version,
                          const QString &versionLabel, QWidget *owner);

    /// Puts the texts into the box and lays it out for them.
    void setTexts(const QString &title, const QString &productName, const QString &description,
                  const QString &comments, const QString &rights, const QString &version,
                  const QString &versionLabel);

private:
    void layoutBox();

    QLabel *m_logo = nullptr;
    QLabel *m_title = nullptr;
    QLabel *m_description = nullptr;
    QLabel *m_comments = nullptr;
    QLabel *m_rights = nullptr;
    QFrame *m_lines[2] = {};
    QLabel *m_name = nullptr;
    QLabel *m_verText = nullptr;
    QLabel *m_version = nullptr;
    QPushButton *m_ok = nullptr;
};
