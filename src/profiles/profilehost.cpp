#include "profiles/profilehost.h"

QString ProfileHost::requestName(Request request)
{
    switch (request) {
    case Request::GetProfileList:
        return QStringLiteral("GetProfileList");
    case Request::GetProfiles:
        return QStringLiteral("GetProfiles");
    case Request::PutProfiles:
        return QStringLiteral("PutProfiles");
    case Request::AddProfiles:
        return QStringLiteral("AddProfiles");
    case Request::RemoveProfiles:
        return QStringLiteral("RemoveProfiles");
    case Request::SaveProfileAs:
        return QStringLiteral("SaveProfileAs");
    }
    return {};
}
