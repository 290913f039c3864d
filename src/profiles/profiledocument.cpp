#include "profiles/profiledocument.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "common/dlvparams.h"
#include "common/ordereddict.h"
#include "model/errortrap.h"
#include "model/viewchoice.h"
#include "profiles/profilehost.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebtable.h"

#include <QStringList>

namespace {

const QString kBUList = QStringLiteral("BUList");
const QString kSummaryOption = QStringLiteral("SummaryOption");
const QString kDisplayByWorkOrders = QStringLiteral("DisplayByWorkOrders");
const QString kID = QStringLiteral("ID");
const QString kList = QStringLiteral("List");

// The three collapsed-node lists, in the order of their rows in "CollapsedNodes" and of the grids.
const QString kListIds[3] = {QStringLiteral("JobTypes"), QStringLiteral("BUWorkOrders"),
                             QStringLiteral("BUPoints")};

QZWebTable &requireSection(QZWebProfile &profile, QStringView name)
{
    if (QZWebTable *section = profile.section(name))
        return *section;
    throw DLVError::subscriptOutOfRange(
        QStringLiteral("Profile '%1' has no section '%2'").arg(profile.name(), name));
}

} // namespace

ProfileDocument::ProfileDocument(ProfileHost &host) : m_host(host) {}

ProfileDocument::~ProfileDocument() = default;

const QString &ProfileDocument::selectFieldList()
{
    static const QString list =
        QStringList{kBUList, kSummaryOption, kDisplayByWorkOrders}.join(u',');
    return list;
}

const QString &ProfileDocument::nodesFieldList()
{
    static const QString list = QStringList{kID, kList}.join(u',');
    return list;
}

QString ProfileDocument::currentName() const
{
    return m_current ? m_current->name() : QString();
}

void ProfileDocument::setCurrentProfile(int index)
{
    m_current = &m_profiles.item(index);
}

void ProfileDocument::replaceProfiles(QZWebProfiles profiles)
{
    // The current profile lives in the old set; never leave it dangling.
    m_current = nullptr;
    m_profiles = std::move(profiles);
}

void ProfileDocument::clear()
{
    m_current = nullptr;
    m_profiles.clear();
}

void ProfileDocument::writeSelection(QZWebTable &select)
{
    const ViewChoice &choice = m_host.viewChoice();
    select.setField(1, kBUList, choice.chosenIds().join(u'|'));
    select.setField(1, kSummaryOption, Conv::boolText(choice.singleUnits()));
    select.setField(1, kDisplayByWorkOrders, Conv::boolText(choice.byWorkOrders()));
}

void ProfileDocument::writeCollapsedNodes(QZWebTable &nodes)
{
    // A section with one or two rows (left so by InitProfileSettings) is rebuilt here, before
    // the three lists are written into rows 1 to 3.
    if (nodes.rowCount() != 3) {
        for (int n = nodes.rowCount(); n > 0; --n)
            nodes.removeRow(1);
        for (int i = 0; i < 3; ++i)
            nodes.addRow();
    }
    for (int grid = 0; grid < 3; ++grid)
        SaveNodesToProfile(nodes, kListIds[grid], grid);
}

void ProfileDocument::UpdateCurrentProfile(bool structureOnly)
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("UpdateCurrentProfile"), [&] {
        if (!m_current)
            return;
        if (!structureOnly) {
            writeSelection(requireSection(*m_current, selectSection));
            writeCollapsedNodes(requireSection(*m_current, nodesSection));
        }
        DLVParams params;
        params.ProfilesXML = m_profiles.toXml();
        if (!structureOnly)
            m_host.setHourglass(true);
        m_host.raiseProfileRequest(ProfileHost::Request::PutProfiles, params);
    });
}

void ProfileDocument::InitProfileSettings()
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("InitProfileSettings"), [&] {
        if (!m_current)
            return;
        bool changed = false;
        QZWebTable *select = m_current->section(selectSection);
        if (!select) {
            select = &m_current->addSection(QString::fromUtf16(selectSection), selectFieldList());
            changed = true;
        }
        if (select->rowCount() < 1) {
            select->addRow();
            changed = true;
        }
        QZWebTable *nodes = m_current->section(nodesSection);
        if (!nodes) {
            nodes = &m_current->addSection(QString::fromUtf16(nodesSection), nodesFieldList());
            changed = true;
        }
        if (nodes->rowCount() < 1) {
            for (int i = 0; i < 3; ++i)
                nodes->addRow();
            changed = true;
        }
        if (changed)
            UpdateCurrentProfile(true);
    });
}

void ProfileDocument::LoadProfileSettings()
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("LoadProfileSettings"), [&] {
        // Settings applied before the host sent a profile (a host that sends data too early)
        // give the default view, like a profile without the row.
        const QZWebTable *select = m_current ? m_current->section(selectSection) : nullptr;
        ViewChoice &choice = m_host.viewChoice();
        const int items = choice.unitCount();
        if (!select || select->rowCount() < 1) {
            choice.setSingleUnits(true);
            choice.setByWorkOrders(true);
            if (items >= 1) {
                std::vector<char> first(std::size_t(items), 0);
                first[0] = 1;
                choice.setAllChosen(std::move(first));
            }
            return;
        }

        const QString summary = select->field(1, kSummaryOption);
        if (!summary.isEmpty()) {
            m_summarySetting = Conv::textToBool(summary);
            choice.setSingleUnits(m_summarySetting);
        } else {
            choice.setSingleUnits(true);
        }

        const QString display = select->field(1, kDisplayByWorkOrders);
        choice.setByWorkOrders(display.isEmpty() ? true : Conv::textToBool(display));

        // Read the whole list first: a repeated id is reported before the selection changes.
        StringSet ids;
        const QString buList = select->field(1, kBUList);
        if (!buList.isEmpty()) {
            for (const QString &id : buList.split(u'|'))
                ids.add(id, id);
        }
        std::vector<char> chosen(std::size_t(items), 0);
        bool anySelected = false;
        for (int i = 0; i < items; ++i) {
            // Keys carry a one-character prefix before the unit id.
            if (ids.contains(QStringView(choice.unitKey(i)).mid(1))) {
                chosen[std::size_t(i)] = 1;
                anySelected = true;
            }
        }
        if (!anySelected && items >= 1)
            chosen[0] = 1;
        choice.setAllChosen(std::move(chosen));

        // The summary grid's own list ("JobTypes") is restored by the summary fill itself.
        if (m_host.hierarchyGridsFilled()) {
            RestoreNodes(kListIds[1], 1);
            RestoreNodes(kListIds[2], 2);
        }
    });
}

void ProfileDocument::SaveNodesToProfile(QZWebTable &nodes, const QString &ID, int gridIndex)
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("SaveNodesToProfile"), [&] {
        const int row = gridIndex + 1;
        nodes.setField(row, kID, ID);
        const StringSet collapsed = m_host.collapsedList(gridIndex);
        QStringList keys;
        keys.reserve(collapsed.count());
        for (const auto &entry : collapsed)
            keys.append(entry.key);
        nodes.setField(row, kList, keys.join(u'|'));
    });
}

void ProfileDocument::RestoreNodes(const QString &ID, int gridIndex)
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("RestoreNodes"), [&] {
        m_host.expandAll(gridIndex);
        const QZWebTable *nodes = m_current ? m_current->section(nodesSection) : nullptr;
        // Exactly three rows or nothing: anything else leaves the grid fully expanded.
        if (!nodes || nodes->rowCount() != 3)
            return;
        for (int row = 1; row <= 3; ++row) {
            if (nodes->field(row, kID).trimmed() == ID) {
                SetCollapsedNodes(gridIndex, *nodes, row);
                return;
            }
        }
    });
}

void ProfileDocument::SetCollapsedNodes(int gridIndex, const QZWebTable &nodes, int row)
{
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("SetCollapsedNodes"), [&] {
        const QString list = nodes.field(row, kList);
        if (list.isEmpty())
            return;
        StringSet keys;
        for (const QString &key : list.split(u'|'))
            keys.add(key, key);
        m_host.expandAll(gridIndex);
        m_host.collapse(gridIndex, keys);
    });
}
