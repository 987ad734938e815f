#include "reports/print_preview.h"

#include "core/screen_host.h"
#include "reports/print_capture.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

QSize pictureSize(const Recording& recording) {
    const QSizeF sheet = recording.format.sheet();
    const double pages = double(std::max<std::size_t>(1, recording.pages.size()));
    return QSize(int(std::ceil(sheet.width() / PreviewPicture::TwipsPerPixel)),
                 int(std::ceil(sheet.height() * pages / PreviewPicture::TwipsPerPixel)));
}

} // namespace

PreviewPicture::PreviewPicture(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("picPreview"));
    setAutoFillBackground(false);
}

void PreviewPicture::setRecording(const Recording& recording) {
    m_recording = recording;
    resize(pictureSize(m_recording));
    update();
}

void PreviewPicture::clear() {
    m_recording = Recording();
    resize(pictureSize(m_recording));
    update();
}

void PreviewPicture::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Qt::white);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const double scale = 1.0 / TwipsPerPixel;
    const double pageHeight = m_recording.format.sheet().height();
    for (std::size_t i = 0; i < m_recording.pages.size(); ++i) {
        const double top = pageHeight * double(i) * scale;
        const QRectF pageRect(0, top, width(), pageHeight * scale);
        if (!pageRect.intersects(event->rect()))
            continue;
        painter.save();
        painter.scale(scale, scale);
        painter.translate(PageFormat::HardMargin, pageHeight * double(i) + PageFormat::HardMargin);
        RenderPage(painter, m_recording.pages[i]);
        painter.restore();
        if (i > 0) {
            painter.setPen(QPen(Qt::gray, 1, Qt::DashLine));
            painter.drawLine(QPointF(0, top), QPointF(width(), top));
        }
    }
}

frmPrintPreview::frmPrintPreview(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPrintPreview"));
    setWindowTitle(QStringLiteral("Print Preview"));

    lblCallerCaption = new QLabel(this);
    lblCallerCaption->setObjectName(QStringLiteral("lblCallerCaption"));
    lblCallerCaption->setAlignment(Qt::AlignCenter);
    QFont captionFont = lblCallerCaption->font();
    captionFont.setBold(true);
    lblCallerCaption->setFont(captionFont);

    picMain = new QWidget(this);
    picMain->setObjectName(QStringLiteral("picMain"));
    picMain->setAutoFillBackground(true);
    QPalette palette = picMain->palette();
    palette.setColor(QPalette::Window, QColor(0x80, 0x80, 0x80));
    picMain->setPalette(palette);
    picMain->setMinimumSize(400, 300);
    picMain->installEventFilter(this);
    picPreview = new PreviewPicture(picMain);

    VScroll1 = new QScrollBar(Qt::Vertical, this);
    VScroll1->setObjectName(QStringLiteral("VScroll1"));
    HScroll1 = new QScrollBar(Qt::Horizontal, this);
    HScroll1->setObjectName(QStringLiteral("HScroll1"));
    connect(VScroll1, &QScrollBar::valueChanged, this, [this] { scrollPicture(); });
    connect(HScroll1, &QScrollBar::valueChanged, this, [this] { scrollPicture(); });

    cmdPrint = new QPushButton(QStringLiteral("&Print"), this);
    cmdPrint->setObjectName(QStringLiteral("cmdPrint"));
    cmdClose = new QPushButton(QStringLiteral("&Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setFocusPolicy(Qt::NoFocus);
    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(cmdClose, &QPushButton::clicked, this, [this] { cmdClose_Click(); });

    auto* view = new QGridLayout;
    view->setSpacing(0);
    view->addWidget(picMain, 0, 0);
    view->addWidget(VScroll1, 0, 1);
    view->addWidget(HScroll1, 1, 0);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdClose);
    auto* layout = new QVBoxLayout(this);
    // The picture sits 240 twips from the left and 600 from the top of the window.
    layout->setContentsMargins(16, 8, 16, 8);
    layout->addWidget(lblCallerCaption);
    layout->addLayout(view, 1);
    layout->addLayout(buttons);
    resize(1000, 720);
}

void frmPrintPreview::showReport(const Recording& pages, const QString& callerCaption,
                                 QWidget* caller, std::function<void()> print) {
    picPreview->clear();
    lblCallerCaption->setText(QStringLiteral("  *** ") + callerCaption + QStringLiteral(" ***  "));
    m_caller = caller;
    m_hasCaller = caller != nullptr;
    m_print = std::move(print);
    picPreview->setRecording(pages);
    picPreview->move(0, 0);
    VScroll1->setValue(0);
    HScroll1->setValue(0);
    updateScrollBars();
}

bool frmPrintPreview::eventFilter(QObject* watched, QEvent* event) {
    if (watched == picMain && event->type() == QEvent::Resize)
        updateScrollBars();
    return QWidget::eventFilter(watched, event);
}

void frmPrintPreview::updateScrollBars() {
    // The bars run from 0 to 100 per cent of the part that does not fit; none is needed when
    // the picture fits.
    const bool tall = picPreview->height() > picMain->height();
    const bool wide = picPreview->width() > picMain->width();
    VScroll1->setRange(0, tall ? 100 : 0);
    HScroll1->setRange(0, wide ? 100 : 0);
    VScroll1->setSingleStep(tall ? std::max(1, 100 * 40 / picPreview->height()) : 1);
    VScroll1->setPageStep(tall ? std::max(1, 100 * picMain->height() / picPreview->height()) : 1);
    HScroll1->setSingleStep(1);
    HScroll1->setPageStep(wide ? std::max(1, 100 * picMain->width() / picPreview->width()) : 1);
    VScroll1->setEnabled(tall);
    HScroll1->setEnabled(wide);
    scrollPicture();
}

void frmPrintPreview::scrollPicture() {
    const int top =
        -(VScroll1->value() * std::max(0, picPreview->height() - picMain->height()) / 100);
    const int left =
        -(HScroll1->value() * std::max(0, picPreview->width() - picMain->width()) / 100);
    picPreview->move(left, top);
}

void frmPrintPreview::cmdPrint_Click() {
    if (m_hasCaller && !m_caller)
        return; // the report form is gone, and its print path with it
    if (m_print)
        m_print();
}

void frmPrintPreview::cmdClose_Click() {
    picPreview->clear();
    CloseScreen(this);
}

frmPrintPreview* ShowPrintPreview(const Recording& pages, const QString& callerCaption,
                                  QWidget* caller, std::function<void()> print) {
    PrintCapture::recordPreview(pages);
    frmPrintPreview* preview = nullptr;
    ScreenHost* main = screenHost();
    if (main)
        preview =
            qobject_cast<frmPrintPreview*>(main->openScreen(QStringLiteral("frmPrintPreview")));
    const bool isNew = preview == nullptr;
    if (isNew)
        preview = new frmPrintPreview;
    preview->showReport(pages, callerCaption, caller, std::move(print));
    if (isNew) {
        if (main) {
            main->showScreen(preview, false);
        } else {
            preview->setAttribute(Qt::WA_DeleteOnClose);
            preview->show();
        }
    }
    return preview;
}
