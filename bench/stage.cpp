#include "stage.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <cstdio>

Stage::Stage(QString name) : m_name(std::move(name))
{
    m_timer.start();
}

void Stage::add(const QString &key, double value)
{
    m_fields.emplace_back(key, QString::number(value, 'g', 10));
}

void Stage::add(const QString &key, const QString &value)
{
    // Let Qt do the JSON escaping of the text.
    const QByteArray quoted =
        QJsonDocument(QJsonObject{{"v", value}}).toJson(QJsonDocument::Compact);
    m_fields.emplace_back(key, QString::fromUtf8(quoted.mid(5, quoted.size() - 6)));
}

double Stage::stop()
{
    if (m_ms < 0)
        m_ms = double(m_timer.nsecsElapsed()) / 1e6;
    return m_ms;
}

void Stage::print()
{
    stop();
    QString line = QStringLiteral("{\"stage\":\"%1\",\"ms\":%2,\"peak_rss_kb\":%3")
                       .arg(m_name)
                       .arg(m_ms, 0, 'f', 2)
                       .arg(peakRssKb());
    for (const auto &[key, value] : m_fields)
        line += QStringLiteral(",\"%1\":%2").arg(key, value);
    line += u'}';
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

long Stage::peakRssKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    QTextStream in(&status);
    QString line;
    while (in.readLineInto(&line)) {
        if (line.startsWith(u"VmHWM:"))
            return line.mid(6).trimmed().section(u' ', 0, 0).toLong();
    }
    return -1;
}
