#pragma once

#include <QString>

/// The texts the Help button passes to the about box: the product's name and comments, the
/// version, and the product subtitle and rights line of the user's language.
class AboutInfo final
{
public:
    AboutInfo() = delete;

    /// "Dashlon Viewer".
    [[nodiscard]] static QString productName();
    /// The comments of the control's version information (not translated, like the rest of the
    /// version information).
    [[nodiscard]] static QString comments();
    /// The control's version: major, minor and revision joined with "." (for example "2.0.15").
    [[nodiscard]] static QString versionText();
    /// The product subtitle for a language code "EN", "PO" or "SP" (letter case ignored); empty
    /// for any other code.
    [[nodiscard]] static QString description(const QString &languageCode);
    /// The rights line for a language code "EN", "PO" or "SP" (letter case ignored); empty for
    /// any other code.
    [[nodiscard]] static QString rights(const QString &languageCode);
};
