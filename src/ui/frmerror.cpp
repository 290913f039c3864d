#include "ui/frmerror.h"

#include "common/displaytext.h"
#include "ui/captioncatalogue.h"
#include "ui/ownerframelock.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace {

// Wide enough for the advice text to wrap into three or four comfortable lines.
constexpr int TextColumnWidth = 420;
constexpr int IconSize = 48;

QLabel *makeLabel(const QString &name, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    return label;
}

// Details the user may want to copy into a report to the administrator.
QLabel *makeDetail(const QString &name, QWidget *parent)
{
    QLabel *label = makeLabel(name, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

// An amber warning triangle, painted at the screen's pixel ratio so that it stays crisp where the
// style's bitmap icons would be scaled up.
QPixmap paintWarningIcon()
{
    const qreal ratio = std::max<qreal>(1.0, qGuiApp ? qGuiApp->devicePixelRatio() : 1.0);
    QPixmap pixmap(QSize(IconSize, IconSize) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);

    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath triangle;
    triangle.moveTo(IconSize / 2.0, 4);
    triangle.lineTo(IconSize - 3, IconSize - 5);
    triangle.lineTo(3, IconSize - 5);
    triangle.closeSubpath();
    QLinearGradient fill(0, 4, 0, IconSize - 5);
    fill.setColorAt(0, QColor(0xff, 0xc8, 0x3d));
    fill.setColorAt(1, QColor(0xf2, 0x9d, 0x0c));
    p.setPen(QPen(QColor(0xb8, 0x6e, 0x00), 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(triangle);

    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x3a, 0x2a, 0x00));
    p.drawRoundedRect(QRectF(IconSize / 2.0 - 2.5, 16, 5, 15), 2.5, 2.5);
    p.drawEllipse(QPointF(IconSize / 2.0, 36.5), 3, 3);
    return pixmap;
}

} // namespace

frmError::frmError(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmError"));
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    auto *icon = makeLabel(QStringLiteral("imgIcon"), this);
    icon->setPixmap(paintWarningIcon());
    icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    m_label1 = makeLabel(QStringLiteral("Label1"), this);
    m_label1->setWordWrap(true);
    QFont strong = m_label1->font();
    strong.setBold(true);
    m_label1->setFont(strong);

    m_label2 = makeLabel(QStringLiteral("Label2"), this);
    m_label3 = makeLabel(QStringLiteral("Label3"), this);
    m_label4 = makeLabel(QStringLiteral("Label4"), this);
    m_errNum = makeDetail(QStringLiteral("lblErrNum"), this);
    m_errStr = makeDetail(QStringLiteral("lblErrStr"), this);
    m_errLoc = makeDetail(QStringLiteral("lblErrLoc"), this);
    m_label2->setBuddy(m_errNum);
    m_label3->setBuddy(m_errStr);
    m_label4->setBuddy(m_errLoc);

    m_label5 = makeLabel(QStringLiteral("Label5"), this);
    m_label5->setWordWrap(true);

    m_cont = new QPushButton(this);
    m_cont->setObjectName(QStringLiteral("cmdCont"));
    m_cont->setDefault(true);
    m_cont->setAutoDefault(true);
    m_cont->setMinimumWidth(96);
    connect(m_cont, &QPushButton::clicked, this, &QDialog::accept);

    // A grid rather than a form layout: each heading stays level with the first line of its
    // value when the value wraps.
    auto *details = new QGridLayout;
    details->setHorizontalSpacing(12);
    details->setVerticalSpacing(6);
    details->setColumnStretch(1, 1);
    const std::pair<QLabel *, QLabel *> rows[] = {
        {m_label2, m_errNum}, {m_label3, m_errStr}, {m_label4, m_errLoc}};
    for (int row = 0; row < 3; ++row) {
        details->addWidget(rows[row].first, row, 0, Qt::AlignLeft | Qt::AlignTop);
        details->addWidget(rows[row].second, row, 1, Qt::AlignTop);
    }

    auto *text = new QVBoxLayout;
    text->setSpacing(12);
    text->addWidget(m_label1);
    text->addLayout(details);
    text->addWidget(m_label5);

    auto *body = new QHBoxLayout;
    body->setSpacing(16);
    body->addWidget(icon, 0, Qt::AlignTop);
    body->addLayout(text, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cont);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(18, 18, 18, 14);
    outer->setSpacing(18);
    outer->addLayout(body);
    outer->addLayout(buttons);
    // The dialog takes the size its texts need; the user has nothing to gain from resizing it.
    outer->setSizeConstraint(QLayout::SetFixedSize);

    m_label1->setFixedWidth(TextColumnWidth);
    m_label5->setFixedWidth(TextColumnWidth);
}

frmError::~frmError() = default;

QString frmError::englishText(const QString &key)
{
    static const QHash<QString, QString> texts{
        {QStringLiteral("frmError-Caption"), QStringLiteral("An Error Has Occurred")},
        {QStringLiteral("fraError-Label1"),
         QStringLiteral("Dashlon Viewer has experienced the following problem:")},
        {QStringLiteral("fraError-Label2"), QStringLiteral("Error:")},
        {QStringLiteral("fraError-Label3"), QStringLiteral("Description:")},
        {QStringLiteral("fraError-Label4"), QStringLiteral("Function:")},
        {QStringLiteral("fraError-Label5"),
         QStringLiteral("If you continue to experience problems with Dashlon Viewer, please reload "
                        "the application. If problems persist, contact your system "
                        "administrator.")},
        {QStringLiteral("fraError-cmdCont"), QStringLiteral("Continue")},
    };
    return texts.value(key);
}

void frmError::setTexts(qint32 number, const QString &description, const QString &location,
                        const CaptionCatalogue *captions)
{
    const auto text = [captions](const char *key) {
        const QString k = QString::fromLatin1(key);
        return captions ? captions->caption(k) : englishText(k);
    };
    setWindowTitle(text("frmError-Caption"));
    m_label1->setText(text("fraError-Label1"));
    m_label2->setText(text("fraError-Label2"));
    m_label3->setText(text("fraError-Label3"));
    m_label4->setText(text("fraError-Label4"));
    m_label5->setText(text("fraError-Label5"));
    m_cont->setText(text("fraError-cmdCont"));

    m_errNum->setText(QString::number(number));
    // A host's description may be of any length; the dialog shows what a reader can take in.
    m_errStr->setText(DisplayText::cut(description, DisplayText::MaxToolTip));
    m_errLoc->setText(location);
}

void frmError::ShowError(qint32 number, const QString &description, const QString &location,
                         const CaptionCatalogue *captions, QWidget *owner)
{
    const OwnerFrameLock lock(owner);
    // With a parent window the form is that window's child and could go down with it while the
    // modal loop runs; the guarded pointer makes the final delete safe either way.
    QPointer<frmError> form = new frmError(OwnerFrameLock::dialogParent(owner));
    form->setTexts(number, description, location, captions);
    form->m_cont->setFocus();
    form->exec();
    delete form.data();
}
