#include "testwidgetdialoghost.h"
#include "ui/captioncatalogue.h"
#include "webdata/qzwebtransport.h"

#include <QHash>
#include <QSet>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Every key the control asks for has a text in every language; a table holds no key the control
// never asks for (a misspelt key, whose real one would then come from the fallback); and a
// translation is not a copy of the English table that was never finished.
TEST(CaptionTables, HoldATextForEveryKeyAndNoUnknownKeys)
{
    const QSet<QString> sameInEveryLanguage{QStringLiteral("OK"), QStringLiteral("Total"),
                                            QStringLiteral("No"),
                                            QStringLiteral("fraError-Label2")};
    for (const char *code : {"EN", "PO", "SP"}) {
        const QString language = QString::fromLatin1(code);
        SCOPED_TRACE(language.toStdString());
        QStringList missing, untranslated;
        for (const QString &key : CaptionCatalogue::knownKeys()) {
            const auto text = CaptionCatalogue::builtInText(language, key);
            if (!text || text->trimmed().isEmpty())
                missing << key;
            if (language != u"EN" && !sameInEveryLanguage.contains(key) &&
                text == CaptionCatalogue::builtInText(QStringLiteral("EN"), key))
                untranslated << key;
        }
        EXPECT_TRUE(missing.isEmpty()) << "lacks: " << missing.join(u", ").toStdString();
        EXPECT_TRUE(untranslated.isEmpty()) << untranslated.join(u", ").toStdString();
        const QStringList keys = CaptionCatalogue::builtInKeys(language);
        ASSERT_FALSE(keys.isEmpty()) << "table not compiled in";
        QStringList unknown;
        for (const QString &key : keys)
            if (!CaptionCatalogue::knownKeys().contains(key))
                unknown << key;
        EXPECT_TRUE(unknown.isEmpty()) << unknown.join(u", ").toStdString();
    }
}

TEST(CaptionCatalogue, FollowsOverrideThenLanguageThenEnglishThenKey)
{
    const struct
    {
        const char *language;
        QHash<QString, QString> overrides;
        const char *key;
        const char *expected;
    } rows[] = {
        {"PO", {}, "Profiles", "Perfis"},
        {" sp ", {}, "Close", "Cerrar"}, // code ignores case and blanks
        {"FR", {}, "Close", "Close"},
        {"PO",
         {{QStringLiteral("Profiles"), QStringLiteral("Meus perfis")}},
         "Profiles",
         "Meus perfis"},
        {"SP",
         {{QStringLiteral("Profiles"), QStringLiteral("Mis perfiles")}},
         "Remove",
         "Eliminar"},
        {"PO", {}, "NoSuchKey", "NoSuchKey"},
        {"EN", {}, "profiles", "profiles"}, // keys are case-sensitive
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << r.language << " " << r.key);
        CaptionCatalogue catalogue;
        catalogue.attach(transport(QString::fromUtf8(r.language), r.overrides));
        QString extra = QStringLiteral("caller's text");
        EXPECT_EQ(catalogue.caption(QString::fromUtf8(r.key), extra),
                  QString::fromUtf8(r.expected));
        EXPECT_EQ(extra, QStringLiteral("caller's text")); // neither read nor written
    }
}

TEST(CaptionCatalogue, IsEnglishWithoutTransportAndFollowsTheTransportAfterAttaching)
{
    CaptionCatalogue catalogue;
    EXPECT_EQ(catalogue.languageCode(), QStringLiteral("EN"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("View"));
    const auto t = transport(QStringLiteral("EN"));
    catalogue.attach(t);
    t->setLanguageCode(QStringLiteral("PO"));
    EXPECT_EQ(catalogue.languageCode(), QStringLiteral("PO"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("Exibir"));
    t->setCaptionOverride(QStringLiteral("View"), QStringLiteral("Atualizar"));
    EXPECT_EQ(catalogue.caption(QStringLiteral("View")), QStringLiteral("Atualizar"));
}

} // namespace
