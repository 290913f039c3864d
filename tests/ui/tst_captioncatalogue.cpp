#include "ui/captioncatalogue.h"
#include "ui/frmerror.h"
#include "webdata/qzwebtransport.h"

#include <QHash>
#include <QSet>
#include <gtest/gtest.h>
#include <memory>

namespace {

std::shared_ptr<QZWebTransport> transport(const QString &language,
                                          const QHash<QString, QString> &overrides = {})
{
    auto t = std::make_shared<QZWebTransport>(language);
    for (auto it = overrides.cbegin(); it != overrides.cend(); ++it)
        t->setCaptionOverride(it.key(), it.value());
    return t;
}

class CaptionTable : public ::testing::TestWithParam<const char *>
{};

TEST_P(CaptionTable, HoldsATextForEveryKey)
{
    const QString language = QString::fromLatin1(GetParam());
    QStringList missing;
    for (const QString &key : CaptionCatalogue::knownKeys()) {
        const auto text = CaptionCatalogue::builtInText(language, key);
        if (!text || text->trimmed().isEmpty())
            missing << key;
    }
    EXPECT_TRUE(missing.isEmpty())
        << language.toStdString() << " lacks: " << missing.join(QStringLiteral(", ")).toStdString();
}

// A key in a table that the control never asks for is a misspelt key, and the real one is then
// silently shown from the fallback.
TEST_P(CaptionTable, HoldsNoUnknownKeys)
{
    const QString language = QString::fromLatin1(GetParam());
    const QStringList keys = CaptionCatalogue::builtInKeys(language);
    ASSERT_FALSE(keys.isEmpty()) << "table not compiled in";
    QStringList unknown;
    for (const QString &key : keys)
        if (!CaptionCatalogue::knownKeys().contains(key))
            unknown << key;
    EXPECT_TRUE(unknown.isEmpty()) << unknown.join(QStringLiteral(", ")).toStdString();
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, CaptionTable, ::testing::Values("EN", "PO", "SP"));

class TranslatedTable : public ::testing::TestWithParam<const char *>
{};

// Catches a table that was started as a copy of the English one and not finished.
TEST_P(TranslatedTable, DiffersFromEnglishExceptForSharedWords)
{
    const QString language = QString::fromLatin1(GetParam());
    const QSet<QString> sameInEveryLanguage{QStringLiteral("OK"), QStringLiteral("Total"),
                                            QStringLiteral("No"),
                                            QStringLiteral("fraError-Label2")};
    QStringList untranslated;
    for (const QString &key : CaptionCatalogue::knownKeys()) {
        if (sameInEveryLanguage.contains(key))
            continue;
        if (CaptionCatalogue::builtInText(language, key) ==
            CaptionCatalogue::builtInText(QStringLiteral("EN"), key))
            untranslated << key;
    }
    EXPECT_TRUE(untranslated.isEmpty()) << untranslated.join(QStringLiteral(", ")).toStdString();
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, TranslatedTable, ::testing::Values("PO", "SP"));

TEST(CaptionCatalogue, EnglishTextsAreTheProductsOwn)
{
    const struct
    {
        const char *key;
        const char *text;
    } rows[] = {
        {"SaveCurrentProfile", "Save Current Profile"},
        {"SaveCurrentProfileAs", "Save Current Profile As"},
        {"ManageProfiles", "Manage Profiles"},
        {"UseProfile", "Use Profile"},
        // The control appends " : " to this heading itself.
        {"CurrentProfile", "Current profile"},
        {"AboutDLV", "About Dashlon Viewer"},
        {"frmError-Caption", "An Error Has Occurred"},
        {"fraError-Label1", "Dashlon Viewer has experienced the following problem:"},
        {"fraError-Label2", "Error:"},
        {"fraError-Label3", "Description:"},
        {"fraError-Label4", "Function:"},
        {"fraError-Label5",
         "If you continue to experience problems with Dashlon Viewer, please reload the "
         "application. If problems persist, contact your system administrator."},
        {"fraError-cmdCont", "Continue"},
    };
    for (const auto &row : rows) {
        const QString key = QString::fromLatin1(row.key);
        EXPECT_EQ(CaptionCatalogue::builtInText(QStringLiteral("EN"), key),
                  QString::fromUtf8(row.text))
            << row.key;
    }
}

// The error dialog shows English without a catalogue and through the catalogue otherwise; both
// routes must give the same English.
TEST(CaptionCatalogue, ErrorDialogEnglishMatchesTheEnglishTable)
{
    for (const QString &key : CaptionCatalogue::knownKeys()) {
        if (!key.startsWith(QLatin1String("frmError-")) &&
            !key.startsWith(QLatin1String("fraError-")))
            continue;
        EXPECT_EQ(frmError::englishText(key),
                  CaptionCatalogue::builtInText(QStringLiteral("EN"), key).value_or(QString()))
            << key.toStdString();
    }
}

struct LookupCase
{
    const char *name;
    const char *language;
    QHash<QString, QString> overrides;
    const char *key;
    const char *expected;
};

class CaptionLookup : public ::testing::TestWithParam<LookupCase>
{};

TEST_P(CaptionLookup, FollowsOverrideThenLanguageThenEnglishThenKey)
{
    const LookupCase &c = GetParam();
    CaptionCatalogue catalogue;
    catalogue.attach(transport(QString::fromUtf8(c.language), c.overrides));
    QString extra;
    EXPECT_EQ(catalogue.caption(QString::fromUtf8(c.key), extra), QString::fromUtf8(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CaptionLookup,
    ::testing::Values(LookupCase{"EnglishTable", "EN", {}, "Profiles", "Profiles"},
                      LookupCase{"PortugueseTable", "PO", {}, "Profiles", "Perfis"},
                      LookupCase{"SpanishTable", "SP", {}, "Profiles", "Perfiles"},
                      LookupCase{"LanguageCodeIgnoresCase", "po", {}, "Cancel", "Cancelar"},
                      LookupCase{"LanguageCodeIgnoresBlanks", " sp ", {}, "Close", "Cerrar"},
                      LookupCase{"UnknownLanguageIsEnglish", "FR", {}, "Close", "Close"},
                      LookupCase{"EmptyLanguageIsEnglish", "", {}, "Close", "Close"},
                      LookupCase{"OverrideBeatsLanguageTable",
                                 "PO",
                                 {{QStringLiteral("Profiles"), QStringLiteral("Meus perfis")}},
                                 "Profiles",
                                 "Meus perfis"},
                      LookupCase{"OverrideOfAKeyWithoutTableEntry",
                                 "EN",
                                 {{QStringLiteral("HostOnlyKey"), QStringLiteral("From the host")}},
                                 "HostOnlyKey",
                                 "From the host"},
                      LookupCase{"OverrideOfAnotherKeyDoesNotLeak",
                                 "SP",
                                 {{QStringLiteral("Profiles"), QStringLiteral("Mis perfiles")}},
                                 "Remove",
                                 "Eliminar"},
                      LookupCase{"UnknownKeyGivesTheKey", "PO", {}, "NoSuchKey", "NoSuchKey"},
                      LookupCase{"KeysAreCaseSensitive", "EN", {}, "profiles", "profiles"}),
    [](const ::testing::TestParamInfo<LookupCase> &info) { return info.param.name; });

TEST(CaptionCatalogue, WithoutTransportIsEnglish)
{
    const CaptionCatalogue catalogue;
    EXPECT_EQ(catalogue.languageCode(), QStringLiteral("EN"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("View"));
}

TEST(CaptionCatalogue, FollowsTheTransportAfterAttaching)
{
    CaptionCatalogue catalogue;
    const auto t = transport(QStringLiteral("EN"));
    catalogue.attach(t);
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("View"));

    t->setLanguageCode(QStringLiteral("PO"));
    EXPECT_EQ(catalogue.languageCode(), QStringLiteral("PO"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("Exibir"));

    t->setCaptionOverride(QStringLiteral("View"), QStringLiteral("Atualizar"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("Atualizar"));
}

TEST(CaptionCatalogue, ExtraArgumentIsNeitherReadNorWritten)
{
    CaptionCatalogue catalogue;
    catalogue.attach(transport(QStringLiteral("SP")));
    QString extra = QStringLiteral("caller's text");
    EXPECT_EQ(catalogue.caption(QStringLiteral("NoSuchKey"), extra), QStringLiteral("NoSuchKey"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("Choose"), extra), QStringLiteral("Elegir"));
    EXPECT_EQ(extra, QStringLiteral("caller's text"));
}

} // namespace
