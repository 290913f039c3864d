#include "profiles/frmprofiles.h"

#include "ui/captioncatalogue.h"
#include "ui/dialoghost.h"
#include "ui/ownerframelock.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

frmProfiles::frmProfiles(const CaptionCatalogue *captions, DialogHost &dialogs, QWidget *parent)
    : QDialog(parent), m_captions(captions), m_dialogs(dialogs)
{
    setObjectName(QStringLiteral("frmProfiles"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);

    lstProfiles = new QListWidget(this);
    lstProfiles->setObjectName(QStringLiteral("lstProfiles"));
    lstProfiles->setSelectionMode(QAbstractItemView::SingleSelection);
    lstProfiles->setUniformItemSizes(true);
    lstProfiles->setMinimumSize(240, 200);

    const auto button = [this](const char *name) {
        auto *b = new QPushButton(this);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        return b;
    };
    cmdChoose = button("cmdChoose");
    cmdChoose->setDefault(true);
    cmdNew = button("cmdNew");
    cmdRemove = button("cmdRemove");
    cmdClose = button("cmdClose");

    auto *column = new QVBoxLayout;
    column->addWidget(cmdChoose);
    column->addWidget(cmdNew);
    column->addWidget(cmdRemove);
    column->addStretch(1);
    column->addWidget(cmdClose);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(lstProfiles, 1);
    layout->addLayout(column);

    connect(cmdChoose, &QPushButton::clicked, this, &frmProfiles::cmdChoose_Click);
    connect(cmdNew, &QPushButton::clicked, this, &frmProfiles::cmdNew_Click);
    connect(cmdRemove, &QPushButton::clicked, this, &frmProfiles::cmdRemove_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmProfiles::cmdClose_Click);
    connect(lstProfiles, &QListWidget::itemDoubleClicked, this, &frmProfiles::cmdChoose_Click);
    connect(lstProfiles, &QListWidget::currentRowChanged, this, &frmProfiles::Timer1_Timer);
    connect(lstProfiles, &QListWidget::itemSelectionChanged, this, &frmProfiles::Timer1_Timer);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(200);
    connect(Timer1, &QTimer::timeout, this, &frmProfiles::Timer1_Timer);
    Timer1->start();
}

frmProfiles::~frmProfiles() = default;

QString frmProfiles::caption(const QString &key) const
{
    return m_captions ? m_captions->caption(key) : CaptionCatalogue().caption(key);
}

void frmProfiles::load(const QStringList &names, const QString &currentName)
{
    setWindowTitle(caption(QStringLiteral("Profiles")));
    cmdChoose->setText(caption(QStringLiteral("Choose")));
    cmdNew->setText(caption(QStringLiteral("New")));
    cmdRemove->setText(caption(QStringLiteral("Remove")));
    cmdClose->setText(caption(QStringLiteral("Close")));

    m_currentName = currentName;
    m_names = StringSet(KeyCompare::CaseInsensitive);
    for (const QString &name : names)
        m_names.addIfAbsent(name, name);
    if (m_names.isEmpty())
        m_dialogs.messageBox(DialogHost::MessageKind::Information,
                             caption(QStringLiteral("CreateOneProfile")),
                             caption(QStringLiteral("Profiles")), m_captions, parentWidget());

    lstProfiles->clear();
    for (const auto &entry : m_names)
        lstProfiles->addItem(entry.key);
    int row = -1;
    if (!currentName.isEmpty()) {
        for (int i = 0; i < lstProfiles->count() && row < 0; ++i)
            if (lstProfiles->item(i)->text() == currentName)
                row = i;
    }
    if (row < 0 && lstProfiles->count() > 0)
        row = 0;
    lstProfiles->setCurrentRow(row);
    Timer1_Timer();
}

void frmProfiles::GetProfile(const QStringList &names, const QString &currentName, QWidget *owner)
{
    load(names, currentName);
    const OwnerFrameLock lock(owner);
    lstProfiles->setFocus();
    exec();
}

void frmProfiles::Timer1_Timer()
{
    const bool selected = lstProfiles->currentRow() >= 0 && lstProfiles->currentItem() &&
                          lstProfiles->currentItem()->isSelected();
    cmdChoose->setEnabled(selected);
    cmdRemove->setEnabled(selected);
}

std::optional<QString> frmProfiles::selectedName() const
{
    const QListWidgetItem *item = lstProfiles->currentItem();
    if (lstProfiles->currentRow() < 0 || !item || !item->isSelected())
        return std::nullopt;
    const QString name = item->text();
    if (!m_names.contains(name))
        return std::nullopt;
    return name;
}

void frmProfiles::cmdChoose_Click()
{
    if (const std::optional<QString> name = selectedName()) {
        Q_EMIT ChooseProfile(*name);
        accept();
    }
}

void frmProfiles::cmdNew_Click()
{
    const std::optional<QString> name = m_dialogs.getNewProfile(
        m_captions, QStringLiteral("EnterProfileName"), QStringLiteral("NewProfile"), this);
    if (!name)
        return;
    if (m_names.contains(*name)) {
        m_dialogs.messageBox(DialogHost::MessageKind::Warning,
                             caption(QStringLiteral("ProfileExists")),
                             caption(QStringLiteral("NewProfile")), m_captions, this);
        return;
    }
    Q_EMIT AddProfile(*name);
    accept();
}

void frmProfiles::cmdRemove_Click()
{
    const std::optional<QString> name = selectedName();
    if (!name)
        return;
    // The default profile is refused in any letter case, the current one only as written.
    if (name->toUpper() == QLatin1String("DEFAULT") || *name == m_currentName) {
        m_dialogs.messageBox(DialogHost::MessageKind::Warning,
                             caption(QStringLiteral("CannotRemoveProfile")),
                             caption(QStringLiteral("Profiles")), m_captions, this);
        return;
    }
    const DialogHost::MessageResult answer = m_dialogs.messageBox(
        DialogHost::MessageKind::Question, caption(QStringLiteral("CheckRemoveProfile")),
        caption(QStringLiteral("Profile")) + QStringLiteral(" : ") + *name, m_captions, this);
    if (answer != DialogHost::MessageResult::Yes)
        return;
    Q_EMIT RemoveProfile(*name);
    accept();
}

void frmProfiles::cmdClose_Click()
{
    reject();
}
