#pragma once

#include "ui/dialoghost.h"

#include <QPageLayout>
#include <QPointer>
#include <QPrinter>
#include <QWidget>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

/// A DialogHost for tests: records every call and answers from scripts instead of opening
/// windows. Unscripted answers are what a user pressing Escape would give: OK for information
/// and warnings, No for questions, cancel for the new-profile prompt, close for the manage
/// dialog, cancel for the save-file and print dialogs.
class RecordingDialogHost final : public DialogHost
{
public:
    enum class Kind
    {
        Error,
        About,
        Message,
        NewProfile,
        ManageProfiles,
        SaveFile,
        Print
    };

    struct Call
    {
        Kind kind = Kind::Error;
        // error dialog
        qint32 number = 0;
        QString description;
        QString location;
        // about box (description above is the subtitle there)
        QString productName;
        QString comments;
        QString rights;
        QString version;
        QString versionLabel;
        // message boxes and profile dialogs; title is also the about box's title
        MessageKind messageKind = MessageKind::Information;
        QString text;
        QString title;
        QString promptKey;
        QString titleKey;
        QStringList names;
        QString currentName;
        // save-file dialog (title above)
        QString folder;
        QString filter;
        QString defaultSuffix;
        // print dialog: the printer's settings as the dialog opened
        QPageLayout::Orientation orientation = QPageLayout::Portrait;
        QString docName;
        // common
        const CaptionCatalogue *captions = nullptr;
        QPointer<QWidget> owner;
        bool ownerEnabledDuringCall = true;
    };

    std::vector<Call> calls;
    std::deque<MessageResult> messageAnswers;
    std::deque<std::optional<QString>> newProfileAnswers;
    /// Each entry plays one manage-profiles dialog: it may raise the dialog's events.
    std::deque<std::function<void(const ProfileDialogEvents &)>> manageScripts;
    /// Answers of the save-file dialog: a path, or an empty string for cancel.
    std::deque<QString> saveFileAnswers;
    /// Each entry plays one print dialog: it may change the printer and returns whether the user
    /// pressed Print.
    std::deque<std::function<bool(QPrinter &)>> printScripts;
    /// Runs inside every call, as the user would act while the dialog is open (may be empty).
    std::function<void(const Call &)> whileShown;

    void showError(qint32 number, const QString &description, const QString &location,
                   const CaptionCatalogue *captions, QWidget *owner) override
    {
        Call call = start(Kind::Error, captions, owner);
        call.number = number;
        call.description = description;
        call.location = location;
        finish(std::move(call));
    }

    void showAbout(const QString &title, const QString &productName, const QString &description,
                   const QString &comments, const QString &rights, const QString &version,
                   const QString &versionLabel, QWidget *owner) override
    {
        Call call = start(Kind::About, nullptr, owner);
        call.title = title;
        call.productName = productName;
        call.description = description;
        call.comments = comments;
        call.rights = rights;
        call.version = version;
        call.versionLabel = versionLabel;
        finish(std::move(call));
    }

    MessageResult messageBox(MessageKind kind, const QString &text, const QString &title,
                             const CaptionCatalogue *captions, QWidget *owner) override
    {
        Call call = start(Kind::Message, captions, owner);
        call.messageKind = kind;
        call.text = text;
        call.title = title;
        finish(std::move(call));
        if (!messageAnswers.empty()) {
            const MessageResult answer = messageAnswers.front();
            messageAnswers.pop_front();
            return answer;
        }
        return kind == MessageKind::Question ? MessageResult::No : MessageResult::Ok;
    }

    std::optional<QString> getNewProfile(const CaptionCatalogue *captions, const QString &promptKey,
                                         const QString &titleKey, QWidget *owner) override
    {
        Call call = start(Kind::NewProfile, captions, owner);
        call.promptKey = promptKey;
        call.titleKey = titleKey;
        finish(std::move(call));
        if (newProfileAnswers.empty())
            return std::nullopt;
        std::optional<QString> answer = newProfileAnswers.front();
        newProfileAnswers.pop_front();
        return answer;
    }

    void manageProfiles(const QStringList &names, const QString &currentName,
                        const CaptionCatalogue *captions, QWidget *owner,
                        const ProfileDialogEvents &events) override
    {
        Call call = start(Kind::ManageProfiles, captions, owner);
        call.names = names;
        call.currentName = currentName;
        finish(std::move(call));
        if (manageScripts.empty())
            return;
        const auto script = std::move(manageScripts.front());
        manageScripts.pop_front();
        if (script)
            script(events);
    }

    QString getSaveFileName(const QString &title, const QString &initialFolder,
                            const QString &filter, const QString &defaultSuffix,
                            QWidget *owner) override
    {
        Call call = start(Kind::SaveFile, nullptr, owner);
        call.title = title;
        call.folder = initialFolder;
        call.filter = filter;
        call.defaultSuffix = defaultSuffix;
        finish(std::move(call));
        if (saveFileAnswers.empty())
            return {};
        const QString answer = saveFileAnswers.front();
        saveFileAnswers.pop_front();
        return answer;
    }

    bool selectPrinter(QPrinter &printer, QWidget *owner) override
    {
        Call call = start(Kind::Print, nullptr, owner);
        call.orientation = printer.pageLayout().orientation();
        call.docName = printer.docName();
        finish(std::move(call));
        if (printScripts.empty())
            return false;
        const auto script = std::move(printScripts.front());
        printScripts.pop_front();
        return script && script(printer);
    }

    [[nodiscard]] std::vector<Call> callsOf(Kind kind) const
    {
        std::vector<Call> result;
        for (const Call &call : calls)
            if (call.kind == kind)
                result.push_back(call);
        return result;
    }

private:
    static Call start(Kind kind, const CaptionCatalogue *captions, QWidget *owner)
    {
        Call call;
        call.kind = kind;
        call.captions = captions;
        call.owner = owner;
        call.ownerEnabledDuringCall = owner ? owner->isEnabled() : true;
        return call;
    }

    void finish(Call call)
    {
        calls.push_back(std::move(call));
        if (whileShown)
            whileShown(calls.back());
    }
};
