#pragma once

#include "common/dlvparams.h"
#include "model/viewchoice.h"
#include "profiles/profileexchange.h"
#include "profiles/profilehost.h"
#include "support/recordingdialoghost.h"
#include "support/recordingreporter.h"
#include "ui/captioncatalogue.h"

#include <QString>
#include <QStringList>
#include <array>
#include <deque>
#include <utility>
#include <vector>

/// A host for fuzzing the profile exchange: it answers every request inside the raising call
/// with the next answer of its script (a document and the function name it claims to answer),
/// and stays silent once the script is used up. The view it shows the exchange is scripted too.
class FuzzProfileHost final : public ProfileHost
{
public:
    struct Answer
    {
        QString document;
        QString functionName;
    };

    ProfileExchange *exchange = nullptr;
    std::deque<Answer> answers;

    // --- records
    int requests = 0;
    int clientReady = 0;
    bool hourglass = false;
    RecordingReporter reporter;
    RecordingDialogHost dialogHost;
    CaptionCatalogue captionCatalogue;

    // --- the view
    ViewChoice choice; ///< lvBU's units (key "_" + id) and the two options
    bool gridsFilled = false;
    std::array<QStringList, 3> collapsed;

    void raiseProfileRequest(Request, DLVParams &) override
    {
        ++requests;
        if (answers.empty())
            return;
        const Answer answer = std::move(answers.front());
        answers.pop_front();
        exchange->ReceiveProfileResponse(answer.document, answer.functionName);
    }
    void setHourglass(bool busy) override { hourglass = busy; }
    void ClientReady() override { ++clientReady; }
    ViewChoice &viewChoice() override { return choice; }
    bool hierarchyGridsFilled() const override { return gridsFilled; }
    StringSet collapsedList(int gridIndex) override
    {
        StringSet set;
        for (const QString &key : collapsed.at(std::size_t(gridIndex)))
            set.addIfAbsent(key, key);
        return set;
    }
    void expandAll(int gridIndex) override { collapsed.at(std::size_t(gridIndex)).clear(); }
    void collapse(int gridIndex, const StringSet &keys) override
    {
        for (const auto &entry : keys)
            collapsed.at(std::size_t(gridIndex)).append(entry.key);
    }
    void showCurrentProfile(const QString &) override {}
    void rerunView() override {}
    void profileReplaced() override {}
    const CaptionCatalogue *captions() const override { return &captionCatalogue; }
    DialogHost &dialogs() override { return dialogHost; }
    QWidget *ownerFrame() const override { return nullptr; }
    ErrorReporter &errorReporter() override { return reporter; }
};
