// The host's translations: every text the host's code marks for translation has a finished
// Portuguese and Spanish translation that keeps its placeholders, its shortcut letter and its
// leading and trailing blanks, and HostTranslator puts them in force for a --lang code.
//
// The check runs lupdate over the host's sources into a copy of each committed .ts file, the way
// a developer refreshes them, so a new tr() text, a changed one or an unfinished entry all fail.
#include "host/hosttranslator.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace {

const QString kHostSources = QStringLiteral(DLV_SOURCE_DIR "/src/host");
const QString kHostTsFolder = QStringLiteral(DLV_SOURCE_DIR "/src/host/translations");

struct TsMessage
{
    QString context;
    QString source;
    QString type;      // "unfinished", "vanished", "obsolete" or empty when finished
    QStringList forms; // the translation, or each plural form
};

struct TsFile
{
    QString language;
    QList<TsMessage> messages;
    QString error;
};

TsFile readTs(const QString &path)
{
    TsFile ts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ts.error = path + QStringLiteral(": ") + file.errorString();
        return ts;
    }
    QXmlStreamReader xml(&file);
    QString context;
    TsMessage message;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto name = xml.name();
        if (name == u"TS") {
            ts.language = xml.attributes().value(QLatin1String("language")).toString();
        } else if (name == u"name") {
            context = xml.readElementText();
        } else if (name == u"message") {
            message = {context, {}, {}, {}};
        } else if (name == u"source") {
            message.source = xml.readElementText();
        } else if (name == u"translation") {
            message.type = xml.attributes().value(QLatin1String("type")).toString();
            // Plural forms are children; a plain translation is text only.
            QString text;
            while (!xml.atEnd()) {
                const auto token = xml.readNext();
                if (token == QXmlStreamReader::Characters)
                    text += xml.text();
                else if (token == QXmlStreamReader::StartElement && xml.name() == u"numerusform")
                    message.forms.append(xml.readElementText());
                else if (token == QXmlStreamReader::EndElement && xml.name() == u"translation")
                    break;
            }
            if (message.forms.isEmpty())
                message.forms.append(text);
            ts.messages.append(message);
        }
    }
    if (xml.hasError())
        ts.error = QStringLiteral("%1: line %2: %3")
                       .arg(path)
                       .arg(xml.lineNumber())
                       .arg(xml.errorString());
    return ts;
}

QStringList tsPlaceholders(const QString &text)
{
    static const QRegularExpression marker(QStringLiteral("%(\\d+|n)"));
    QStringList found;
    for (const auto &m : marker.globalMatch(text))
        found.append(m.captured());
    found.sort();
    return found;
}

// Shortcut letters of menus and buttons ("&Quit"); "&&" is a literal ampersand.
int tsMnemonics(QString text)
{
    text.remove(QStringLiteral("&&"));
    int count = 0;
    for (qsizetype i = 0; i + 1 < text.size(); ++i)
        if (text[i] == u'&' && text[i + 1].isLetterOrNumber())
            ++count;
    return count;
}

bool edgeBlanksDiffer(const QString &a, const QString &b)
{
    if (a.isEmpty() || b.isEmpty())
        return false;
    return a.front().isSpace() != b.front().isSpace() || a.back().isSpace() != b.back().isSpace();
}

// One line per fault: "Context "source": what is wrong".
QStringList translationProblems(const TsFile &ts)
{
    QStringList out;
    for (const TsMessage &m : ts.messages) {
        const QString where = QStringLiteral("%1 \"%2\": ").arg(m.context, m.source);
        if (m.type == u"vanished" || m.type == u"obsolete") {
            out.append(where + QStringLiteral("no longer in the code (run lupdate)"));
            continue;
        }
        if (!m.type.isEmpty()) {
            out.append(where + QStringLiteral("not translated (%1)").arg(m.type));
            continue;
        }
        for (const QString &form : m.forms) {
            if (form.trimmed().isEmpty())
                out.append(where + QStringLiteral("empty translation"));
            else if (tsPlaceholders(form) != tsPlaceholders(m.source))
                out.append(where + QStringLiteral("placeholders differ in \"%1\"").arg(form));
            else if (tsMnemonics(form) != tsMnemonics(m.source))
                out.append(where + QStringLiteral("shortcut letter differs in \"%1\"").arg(form));
            else if (edgeBlanksDiffer(form, m.source))
                out.append(where +
                           QStringLiteral("leading or trailing blank differs in \"%1\"").arg(form));
        }
    }
    return out;
}

// Refreshes tsPath from the sources in sourceDir as a developer would; returns an error or "".
QString runLupdate(const QString &sourceDir, const QString &tsPath)
{
    QProcess lupdate;
    lupdate.setProcessChannelMode(QProcess::MergedChannels);
    lupdate.start(QStringLiteral(DLV_LUPDATE_EXE),
                  {sourceDir, QStringLiteral("-I"), QStringLiteral(DLV_SOURCE_DIR "/src"),
                   QStringLiteral("-locations"), QStringLiteral("none"), QStringLiteral("-silent"),
                   QStringLiteral("-ts"), tsPath});
    if (!lupdate.waitForFinished(120000))
        return QStringLiteral("lupdate did not run: ") + lupdate.errorString();
    if (lupdate.exitStatus() != QProcess::NormalExit || lupdate.exitCode() != 0)
        return QStringLiteral("lupdate failed: ") + QString::fromLocal8Bit(lupdate.readAll());
    return {};
}

TEST(HostTranslations, EveryHostTextHasACompleteTranslationInEachLanguage)
{
    const struct
    {
        const char *file;
        const char *language;
    } cases[] = {{"dlvhost_pt.ts", "pt_BR"}, {"dlvhost_es.ts", "es"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        QTemporaryDir dir;
        ASSERT_TRUE(dir.isValid());
        const QString copy = dir.filePath(QString::fromLatin1(c.file));
        ASSERT_TRUE(QFile::copy(QDir(kHostTsFolder).filePath(QString::fromLatin1(c.file)), copy));
        QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
        const QString error = runLupdate(kHostSources, copy);
        ASSERT_TRUE(error.isEmpty()) << error.toStdString();

        const TsFile ts = readTs(copy);
        ASSERT_TRUE(ts.error.isEmpty()) << ts.error.toStdString();
        EXPECT_EQ(ts.language, QString::fromLatin1(c.language));
        EXPECT_GT(ts.messages.size(), 50) << "lupdate found the host's texts";
        const QStringList faults = translationProblems(ts);
        EXPECT_TRUE(faults.isEmpty())
            << faults.size() << " fault(s); translate them in src/host/translations (see "
            << "docs/architecture.md, Reference host translations):\n"
            << faults.join(u'\n').toStdString();
    }
}

// The check itself, on a small source and .ts of its own: each kind of fault is reported once,
// under its own text, and a good entry is not.
TEST(HostTranslations, TheCheckReportsEachKindOfFault)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QDir(dir.path()).mkdir(QStringLiteral("src"));
    QFile source(dir.filePath(QStringLiteral("src/probe.cpp")));
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));
    // The macro is split so that the build's moc scan does not take this test for a class.
    source.write(R"(#include <QObject>
class Probe : public QObject
{
    Q_)"
                 R"(OBJECT
public:
    void texts();
};
void Probe::texts()
{
    tr("Translated");
    tr("Left unfinished");
    tr("Brand new");
    tr("Sent at %1");
    tr("&Quit");
    tr(" - starting");
    tr("Blank");
}
)");
    source.close();
    QFile ts(dir.filePath(QStringLiteral("probe_pt.ts")));
    ASSERT_TRUE(ts.open(QIODevice::WriteOnly));
    ts.write(R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pt_BR">
<context>
    <name>Probe</name>
    <message><source>Translated</source><translation>Traduzido</translation></message>
    <message><source>Left unfinished</source><translation type="unfinished">Meio</translation></message>
    <message><source>Sent at %1</source><translation>Enviado</translation></message>
    <message><source>&amp;Quit</source><translation>Sair</translation></message>
    <message><source> - starting</source><translation>- iniciando</translation></message>
    <message><source>Blank</source><translation> </translation></message>
    <message><source>Taken out of the code</source><translation>Removido</translation></message>
</context>
</TS>
)");
    ts.close();
    const QString error = runLupdate(dir.filePath(QStringLiteral("src")), ts.fileName());
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();

    const TsFile file = readTs(ts.fileName());
    ASSERT_TRUE(file.error.isEmpty()) << file.error.toStdString();
    const QStringList faults = translationProblems(file);
    const struct
    {
        const char *source;
        const char *fault;
    } expected[] = {
        {"Brand new", "not translated (unfinished)"},
        {"Left unfinished", "not translated (unfinished)"},
        {"Taken out of the code", "no longer in the code"},
        {"Sent at %1", "placeholders differ"},
        {"&Quit", "shortcut letter differs"},
        {" - starting", "leading or trailing blank differs"},
        {"Blank", "empty translation"},
    };
    for (const auto &e : expected) {
        const QString prefix = QStringLiteral("Probe \"%1\": ").arg(QString::fromUtf8(e.source));
        const QStringList hits = faults.filter(prefix);
        ASSERT_EQ(hits.size(), 1) << e.source << "\n" << faults.join(u'\n').toStdString();
        EXPECT_TRUE(hits.front().contains(QString::fromLatin1(e.fault)))
            << hits.front().toStdString();
    }
    EXPECT_EQ(faults.size(), qsizetype(std::size(expected))) << faults.join(u'\n').toStdString();
}

TEST(HostTranslator, PutsTheLanguageOfTheCodeInForceWhileItLives)
{
    const struct
    {
        const char *code;
        const char *locale;
        bool translated;
        const char *fileMenu;
        const char *openStatus;
    } cases[] = {
        {"EN", "", false, "&File", "Open"},
        {"PO", "pt_BR", true, "&Arquivo", "Em aberto"},
        {"SP", "es", true, "&Archivo", "Abierta"},
        {"po", "", false, "&File", "Open"}, // the command line hands over upper case
        {"FR", "", false, "&File", "Open"},
    };
    const auto fileMenu = [] { return QCoreApplication::translate("MainWindow", "&File"); };
    const auto openStatus = [] { return QCoreApplication::translate("DetailRecords", "Open"); };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code);
        const QString code = QString::fromLatin1(c.code);
        EXPECT_EQ(HostTranslator::localeName(code), QString::fromLatin1(c.locale));
        {
            const HostTranslator translator(code);
            EXPECT_EQ(translator.hostTextsTranslated(), c.translated);
            // Qt's own texts (standard buttons) come with the system's Qt translations, which
            // scripts/deps.sh installs.
            EXPECT_EQ(translator.qtTextsTranslated(), c.translated);
            EXPECT_EQ(fileMenu(), QString::fromUtf8(c.fileMenu));
            EXPECT_EQ(openStatus(), QString::fromUtf8(c.openStatus));
        }
        EXPECT_EQ(fileMenu(), "&File") << "the translation goes with the translator";
    }
}

} // namespace
