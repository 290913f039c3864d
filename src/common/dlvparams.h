#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>

/// The record passed with every request signal of DLViewer except PostRequest: eleven string
/// properties, all empty when created, no behaviour. Which ones a request fills is told by the
/// request; a host may fill ResultXML and others inside its slot.
class DLVParams
{
    Q_GADGET
    Q_PROPERTY(QString BUID MEMBER BUID)
    Q_PROPERTY(QString JobType MEMBER JobType)
    Q_PROPERTY(QString JobClass MEMBER JobClass)
    Q_PROPERTY(QString JobStatus MEMBER JobStatus)
    Q_PROPERTY(QString Info MEMBER Info)
    Q_PROPERTY(QString JeopardyThreshold MEMBER JeopardyThreshold)
    Q_PROPERTY(QString ProfileName MEMBER ProfileName)
    Q_PROPERTY(QString UserID MEMBER UserID)
    Q_PROPERTY(QString ApplicationID MEMBER ApplicationID)
    Q_PROPERTY(QString ProfilesXML MEMBER ProfilesXML)
    Q_PROPERTY(QString ResultXML MEMBER ResultXML)
    Q_CLASSINFO("InterfaceID", "{6C1F3B52-9E7A-4D0B-8F31-2A5D7C94E001}")

public:
    QString BUID;
    QString JobType;
    QString JobClass;
    QString JobStatus;
    QString Info;
    QString JeopardyThreshold;
    QString ProfileName;
    QString UserID;
    QString ApplicationID;
    QString ProfilesXML;
    QString ResultXML;

    friend bool operator==(const DLVParams &, const DLVParams &) = default;
};

Q_DECLARE_METATYPE(DLVParams)
