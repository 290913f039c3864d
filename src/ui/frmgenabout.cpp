#include "ui/frmgenabout.h"

#include "ui/ownerframelock.h"

#include <QFontMetricsF>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QPushButton>
#include <algorithm>

namespace {

// The box is laid out by hand from a few fixed gaps (whole logical pixels; Qt scales them on
// high-DPI screens). Everything sits inside an inner margin so nothing touches the window edge.
constexpr int Margin = 9;
constexpr int LogoSize = 64;
constexpr int LogoLeft = 3;
constexpr int NameLeft = 8;
constexpr int LogoGap = 16;     // between the logo and the title column
constexpr int NameGap = 20;     // between the name picture and the version column
constexpr int ColumnMargin = 7; // version column to the content's right edge
constexpr int BlockGap = 12;    // above the comments
constexpr int RuleGap = 8;      // below the rights line, above the separator
constexpr int BottomMargin = 12;
constexpr int MinDescriptionWidth = 240;
constexpr int MinButtonWidth = 88;

const QColor Navy(0x0b, 0x3d, 0x91);
const QColor Blue(0x1f, 0x6f, 0xd1);
const QColor Accent(0xf5, 0x9e, 0x0b);

qreal pixelRatio()
{
    return std::max<qreal>(1.0, qGuiApp ? qGuiApp->devicePixelRatio() : 1.0);
}

QPixmap canvas(QSizeF logical)
{
    const qreal ratio = pixelRatio();
    QPixmap pixmap((logical * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// The product logo: a blue tile with rising bars and a trend line, painted at the screen's
// pixel ratio so it stays crisp on high-DPI screens.
QPixmap paintLogo()
{
    QPixmap pixmap = canvas(QSizeF(LogoSize, LogoSize));
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);

    QLinearGradient tile(0, 0, 0, LogoSize);
    tile.setColorAt(0, Blue);
    tile.setColorAt(1, Navy);
    p.setPen(Qt::NoPen);
    p.setBrush(tile);
    p.drawRoundedRect(QRectF(1, 1, LogoSize - 2, LogoSize - 2), 12, 12);

    const qreal base = 50;
    const qreal heights[] = {12, 19, 26, 34};
    p.setBrush(QColor(255, 255, 255, 235));
    for (int i = 0; i < 4; ++i)
        p.drawRoundedRect(QRectF(12 + i * 11, base - heights[i], 7, heights[i]), 1.5, 1.5);

    QPainterPath trend;
    trend.moveTo(10, 36);
    trend.lineTo(24, 28);
    trend.lineTo(35, 31);
    trend.lineTo(52, 13);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(Accent, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPath(trend);
    p.setPen(Qt::NoPen);
    p.setBrush(Accent);
    p.drawEllipse(QPointF(52, 13), 4, 4);
    return pixmap;
}

// The product-name picture: the word mark, "Dashlon" strong and "Viewer" light.
QPixmap paintName(const QFont &baseFont)
{
    QFont strong = baseFont;
    strong.setPixelSize(22);
    strong.setBold(true);
    QFont light = strong;
    light.setBold(false);
    light.setWeight(QFont::Light);

    const QString first = QStringLiteral("Dashlon");
    const QString second = QStringLiteral(" Viewer");
    const QFontMetricsF strongMetrics(strong);
    const QFontMetricsF lightMetrics(light);
    const qreal width =
        strongMetrics.horizontalAdvance(first) + lightMetrics.horizontalAdvance(second);
    const qreal height = std::max(strongMetrics.height(), lightMetrics.height());

    QPixmap pixmap = canvas(QSizeF(std::ceil(width) + 2, std::ceil(height) + 4));
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    const qreal baseline = strongMetrics.ascent() + 1;
    p.setFont(strong);
    p.setPen(Navy);
    p.drawText(QPointF(1, baseline), first);
    p.setFont(light);
    p.setPen(Blue);
    p.drawText(QPointF(1 + strongMetrics.horizontalAdvance(first), baseline), second);

    // A short accent underline ties the mark to the logo's trend line.
    p.setPen(Qt::NoPen);
    p.setBrush(Accent);
    p.drawRoundedRect(QRectF(1, height + 1, 28, 2.5), 1.2, 1.2);
    return pixmap;
}

QLabel *makeAboutLabel(const QString &name, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

// A label's height at a given width, grown for wrapped text.
int heightFor(const QLabel *label, int width)
{
    return std::max(label->sizeHint().height(), label->heightForWidth(width));
}

} // namespace

frmGenAbout::frmGenAbout(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmGenAbout"));
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    m_logo = makeAboutLabel(QStringLiteral("imgLogo"), this);
    m_logo->setPixmap(paintLogo());
    m_logo->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_logo->setContentsMargins(0, 0, LogoGap, 0);

    m_title = makeAboutLabel(QStringLiteral("lblTitle"), this);
    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    m_title->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    m_description = makeAboutLabel(QStringLiteral("lblDescription"), this);
    m_description->setWordWrap(true);
    m_description->setAlignment(Qt::AlignRight | Qt::AlignTop);
    QFont descriptionFont = m_description->font();
    descriptionFont.setPointSizeF(descriptionFont.pointSizeF() * 1.1);
    m_description->setFont(descriptionFont);
    QPalette muted = m_description->palette();
    muted.setColor(QPalette::WindowText, QColor(0x44, 0x4b, 0x55));
    m_description->setPalette(muted);

    m_comments = makeAboutLabel(QStringLiteral("lblComments"), this);
    m_comments->setWordWrap(true);
    m_comments->setContentsMargins(3, BlockGap, 0, 4);
    m_rights = makeAboutLabel(QStringLiteral("lblRights"), this);
    m_rights->setWordWrap(true);
    m_rights->setContentsMargins(3, 0, 0, RuleGap);
    m_rights->setPalette(muted);

    for (int i = 0; i < 2; ++i) {
        auto *line = new QFrame(this);
        line->setObjectName(QStringLiteral("linSeparator%1").arg(i));
        line->setFrameShape(QFrame::NoFrame);
        line->setAutoFillBackground(true);
        line->setBackgroundRole(i == 0 ? QPalette::Mid : QPalette::Light);
        m_lines[i] = line;
    }

    m_name = makeAboutLabel(QStringLiteral("imgName"), this);
    m_name->setPixmap(paintName(font()));
    m_name->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_name->setContentsMargins(0, 0, NameGap, 0);

    m_verText = makeAboutLabel(QStringLiteral("lblVerText"), this);
    m_version = makeAboutLabel(QStringLiteral("lblVersion"), this);
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_ok = new QPushButton(this);
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    m_ok->setText(QStringLiteral("OK"));
    m_ok->setDefault(true);
    m_ok->setAutoDefault(true);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
}

frmGenAbout::~frmGenAbout() = default;

void frmGenAbout::setTexts(const QString &title, const QString &productName,
                           const QString &description, const QString &comments,
                           const QString &rights, const QString &version,
                           const QString &versionLabel)
{
    setWindowTitle(title);
    m_title->setText(productName);
    m_description->setText(description);
    m_comments->setText(comments);
    m_rights->setText(rights);
    m_verText->setText(versionLabel);
    m_version->setText(version);
    layoutBox();
}

void frmGenAbout::layoutBox()
{
    const QSize logo = m_logo->sizeHint();
    const QSize title = m_title->sizeHint();

    // The version column: its label, the number and OK share one left edge and one width.
    const int column = std::max({m_ok->sizeHint().width(), MinButtonWidth,
                                 m_verText->sizeHint().width(), m_version->sizeHint().width()});
    const int nameWidth = m_name->sizeHint().width();

    // Content width: room for logo and title side by side, and for the name picture beside the
    // version column. The two pictures start a few pixels in (LogoLeft, NameLeft); counting those
    // too keeps the title and the version column clear of them whichever row is the wider.
    const int titleColumn = std::max(title.width(), MinDescriptionWidth);
    const int content = std::max(LogoLeft + logo.width() + titleColumn,
                                 NameLeft + nameWidth + column + ColumnMargin);

    const auto place = [](QWidget *w, int x, int y, int width, int height) {
        w->setGeometry(Margin + x, Margin + y, width, height);
    };

    place(m_logo, LogoLeft, 3, logo.width(), logo.height());
    // The title is right-aligned: its left edge is the content's right edge less its width. Its
    // label is at least as wide as a typical subtitle so that the subtitle under it wraps only
    // when it is really long.
    const int titleLeft = content - titleColumn;
    place(m_title, titleLeft, 3, titleColumn, title.height());

    // The subtitle sits at the title's left edge, directly under it, and grows downwards when
    // its text needs more room.
    const int descriptionTop = 3 + title.height();
    const int descriptionHeight = heightFor(m_description, titleColumn);
    place(m_description, titleLeft, descriptionTop, titleColumn, descriptionHeight);

    const int blockEnd = std::max(3 + logo.height(), descriptionTop + descriptionHeight);
    const int commentsHeight = heightFor(m_comments, content);
    place(m_comments, 0, blockEnd, content, commentsHeight);
    const int rightsTop = blockEnd + commentsHeight;
    const int rightsHeight = heightFor(m_rights, content);
    place(m_rights, 0, rightsTop, content, rightsHeight);

    const int lineTop = rightsTop + rightsHeight + 1;
    place(m_lines[0], LogoLeft, lineTop, content - LogoLeft, 1);
    place(m_lines[1], LogoLeft, lineTop + 1, content - LogoLeft, 1);

    const int lowerTop = lineTop + 2 + 4;
    const QSize name = m_name->sizeHint();
    place(m_name, NameLeft, lowerTop, name.width(), name.height());

    const int columnLeft = content - ColumnMargin - column;
    const int verTextHeight = m_verText->sizeHint().height();
    place(m_verText, columnLeft, lowerTop, column, verTextHeight);
    const int versionTop = lowerTop + verTextHeight + 4;
    const int versionHeight = m_version->sizeHint().height();
    place(m_version, columnLeft, versionTop, column, versionHeight);
    const int okTop = versionTop + versionHeight + 4;
    const int okHeight = m_ok->sizeHint().height();
    place(m_ok, columnLeft, okTop, column, okHeight);

    const int bottom = std::max(lowerTop + name.height(), okTop + okHeight);
    setFixedSize(2 * Margin + content, Margin + bottom + BottomMargin);
}

void frmGenAbout::ShowAbout(const QString &title, const QString &productName,
                            const QString &description, const QString &comments,
                            const QString &rights, const QString &version,
                            const QString &versionLabel, QWidget *owner)
{
    const OwnerFrameLock lock(owner);
    // With a parent window the box is that window's child and could go down with it while the
    // modal loop runs; the guarded pointer makes the final delete safe either way.
    QPointer<frmGenAbout> box = new frmGenAbout(OwnerFrameLock::dialogParent(owner));
    box->setTexts(title, productName, description, comments, rights, version, versionLabel);
    box->m_ok->setFocus();
    box->exec();
    delete box.data();
}
